#pragma once

#include "Demo/PictureAnalysis.h"
#include "Demo/Subject.h"

#include <QImage>
#include <QSizeF>
#include <QString>

#include <optional>

namespace kelvara::demo {

/// One sentence on what keeps the shutter from getting ready for `subject`, found by looking at what the cut-out shows
/// of `frame` (upright; null if the camera has not delivered one) in a view of that size in points.
[[nodiscard]] QString whatIsMissing(
    Subject subject, const QImage& frame, const QSizeF& view, const PictureAnalysis& analysis);

/// One sentence where a camera of that size in pixels, in a view of that size in points, has too few of them for the
/// card's machine-readable zone.
[[nodiscard]] std::optional<QString> tooSmallPrint(const QSize& frame, const QSizeF& view);

} // namespace kelvara::demo
