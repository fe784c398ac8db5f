#pragma once

#include "Platform/Vision/MrzBandFinder.h"

#include <QImage>

namespace kelvara {

/// How a band is to be drawn.
struct MrzBandLook
{
    double capital = 22; ///< Height of a capital in the drawing, in pixels.
    bool brightestChannel = false; ///< Whether coloured print counts as paper. Needs colour, which pictures blur.
    double sharpness = 0; ///< How much of what blur has taken is given back; 0: nothing.
};

/// The band alone, upright, evenly lit and of full contrast: paper is 255, ink 0, whatever they are in the picture
/// (`Format_Grayscale8`). Around the lines there is at least a capital's height of margin. Any thread.
[[nodiscard]] QImage drawMrzBand(const QImage& picture, const MrzBand& band, const MrzBandLook& look);

} // namespace kelvara
