#pragma once

#include "Platform/Foundation/Export.h"

#include <QImage>
#include <QPointF>

#include <array>
#include <vector>

namespace kelvara {

/// Where the lines of a machine-readable zone seem to stand in a picture.
struct MrzBand
{
    /// Around the glyphs: top left, top right, bottom right, bottom left. Pixels, origin top-left.
    std::array<QPointF, 4> corners;
    int lines = 0; ///< Two or three.
    int characters = 0; ///< In a line, as their pitch says: 30, 36 or 44.
    double pitch = 0; ///< From one character to the next, in pixels.
    double capital = 0; ///< Their height, in pixels: about the pitch, unless seen from aslant.
    double evidence = 0; ///< Greater is likelier; for comparison within one picture.
};

/// Looks for two or three dense lines of evenly pitched characters, one below the other and equally long, dark on
/// light, turned by up to 10° from upright. The picture may show a whole document and what lies around it; capitals
/// must be about 5 pixels high or more. Likeliest first, at most a handful; empty when there is nothing like it. Any
/// thread.
[[nodiscard]] KELVARA_EXPORT std::vector<MrzBand> findMrzBands(const QImage& picture);

} // namespace kelvara
