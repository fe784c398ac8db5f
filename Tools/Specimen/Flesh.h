#pragma once

#include "Tools/Specimen/Dice.h"

#include <QImage>
#include <QPainterPath>

namespace kelvara::specimen {

/// A finger or a hand in pixels of the picture.
struct Limb
{
    QPainterPath outline;
    QPainterPath nails; ///< Shapes within the outline; may be empty.
    QPainterPath creases; ///< Lines within the outline; may be empty.
    double roundness = 8; ///< From the rim to where it looks flat, in pixels.
};

/// Paints the limb, lit as something round, with a soft shadow on what lies beneath.
void paintLimb(QImage& picture, const Limb& limb, Dice& dice);

} // namespace kelvara::specimen
