#pragma once

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Scene.h"

#include <QSizeF>

class QPainter;

namespace kelvara::specimen {

/// Things on the surface beside the card: lines of text, keys, a pen, a cup's foot, a cable, the edge of other paper.
/// The painter is in millimetres, origin at the card's centre; `surface` is what may be drawn on, `view` about what
/// will be seen.
void drawClutter(QPainter& painter, QSizeF surface, QSizeF view, Background background, Dice& dice);

} // namespace kelvara::specimen
