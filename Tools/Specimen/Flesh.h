#pragma once

#include "Tools/Specimen/Dice.h"

#include <QImage>
#include <QPainterPath>

#include <vector>

namespace kelvara::specimen {

/// One finger or palm in pixels of the picture, lit as something round.
struct Limb
{
    QPainterPath outline;
    QPainterPath nail; ///< Empty if it is not seen.
    double roundness; ///< From the rim to where it looks flat, in pixels.
};

/// Paints limbs in order, each with a soft shadow on what lies beneath.
void paintLimbs(QImage& picture, const std::vector<Limb>& limbs, Dice& dice);

} // namespace kelvara::specimen
