#pragma once

#include <QImage>
#include <QPolygonF>

#include <vector>

namespace kelvara::cli {

/// The picture with the outlines drawn over it.
[[nodiscard]] QImage annotated(const QImage& picture, const std::vector<QPolygonF>& outlines);

} // namespace kelvara::cli
