#pragma once

#include "Demo/PictureAnalysis.h"
#include "Demo/Subject.h"

#include <QImage>
#include <QSizeF>
#include <QString>

namespace kelvara::demo {

/// One sentence on what keeps the shutter from getting ready for `subject`, found by looking at what the cut-out shows
/// of `frame` (upright; null if the camera has not delivered one) in a view of that size in points.
[[nodiscard]] QString whatIsMissing(
    Subject subject, const QImage& frame, const QSizeF& view, const PictureAnalysis& analysis);

} // namespace kelvara::demo
