#pragma once

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace kelvara {

/// How many device pixels a painter gives a point, whichever way it is turned. The larger of the two axes, so that a
/// picture which is being folded over keeps the same pixels.
[[nodiscard]] inline double pixelsPerPoint(const QPainter& painter)
{
    const QTransform device = painter.deviceTransform();
    return std::max(std::hypot(device.m11(), device.m12()), std::hypot(device.m21(), device.m22()));
}

} // namespace kelvara
