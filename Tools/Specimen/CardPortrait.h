#pragma once

#include <QRectF>

#include <cstdint>

class QPainter;

namespace kelvara::specimen {

/// The holder's photograph in `area` (any units of the painter), before a plain studio wall.
void drawPortrait(QPainter& painter, std::uint32_t seed, const QRectF& area);

/// The small second picture: pale, grey and screened with lines.
void drawGhostPortrait(QPainter& painter, std::uint32_t seed, const QRectF& area);

/// Where `drawPortrait` puts the face (forehead to chin, ear to ear).
[[nodiscard]] QRectF faceInPortrait(std::uint32_t seed, const QRectF& area);

} // namespace kelvara::specimen
