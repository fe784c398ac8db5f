#pragma once

#include <QImage>
#include <QRectF>

#include <optional>

namespace kelvara {

/// Cuts a bitmap to a rectangle in its pixels (origin top-left): the rectangle is made integral outwards, intersected
/// with the bitmap, and yields nothing when that is empty or not finite. The result is a view into the same bytes and
/// keeps them alive; no pixel is copied. Any thread.
[[nodiscard]] std::optional<QImage> cropping(const QImage& bitmap, const QRectF& rect);

/// (x · width, y · height).
[[nodiscard]] QPointF scaled(const QPointF& point, const QSizeF& size);
/// Origin x and width by the width, origin y and height by the height.
[[nodiscard]] QRectF scaled(const QRectF& rect, const QSizeF& size);

} // namespace kelvara
