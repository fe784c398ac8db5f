#pragma once

#include <QImage>
#include <QRectF>
#include <QSizeF>

class QPainter;

namespace kelvara::specimen {

/// ID-1, in millimetres (ISO/IEC 7810).
inline constexpr double cardWidth = 85.60;
inline constexpr double cardHeight = 53.98;
inline constexpr double cardRadius = 3.18;

/// Draws a side's security background (colour run, rosettes, fine wavy lines) in millimetres of the card.
void drawSecurityBackground(QPainter& painter, bool front);

/// A 1-D bar code (Code 39) of `text` (A–Z, 0–9) filling `area`.
void drawBarCode(QPainter& painter, const QString& text, const QRectF& area);

/// A small flag: crescent and star on red.
void drawFlag(QPainter& painter, const QRectF& area);

} // namespace kelvara::specimen
