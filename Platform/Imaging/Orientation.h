#pragma once

#include "Platform/Imaging/UIImage.h"

namespace kelvara::imaging {

/// An orientation as operations on the stored bitmap (row 0 at the top): first the flips, then, if asked for, the
/// swap of rows and columns.
struct OrientationSteps
{
    bool flipX = false;
    bool flipY = false;
    bool transpose = false;
};

/// What brings a bitmap of that orientation upright. A value outside the enumeration is a fatal error.
[[nodiscard]] OrientationSteps stepsUpright(CGImagePropertyOrientation orientation);

} // namespace kelvara::imaging
