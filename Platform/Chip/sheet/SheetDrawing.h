#pragma once

#include "Platform/Chip/sheet/SheetPhase.h"

#include <QSizeF>

#include <cstdint>

class QPainter;

namespace kelvara::chip::sheet {

/// What a scene is drawn on: origin at the upper left, y down, in units that the painter scales.
inline constexpr QSizeF kCanvas { 240, 180 };

/// When the marks of the last phases are complete, in milliseconds.
inline constexpr std::int64_t kMarkDrawnAfter = 900;

/// Draws a phase's picture as it is so many milliseconds after its beginning. Any thread.
void drawScene(QPainter& painter, SheetPhase phase, std::int64_t milliseconds);

/// The moment that tells most when nothing may move.
[[nodiscard]] std::int64_t restingMoment(SheetPhase phase);

} // namespace kelvara::chip::sheet
