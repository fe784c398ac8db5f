#pragma once

#include <QRect>
#include <QRectF>

#include <optional>

namespace kelvara::imaging {

/// The smallest rectangle of whole pixels around `rect`. Absent when it is empty, not finite or has an edge beyond
/// ±2²⁹.
[[nodiscard]] std::optional<QRect> integralRect(const QRectF& rect);

} // namespace kelvara::imaging
