#pragma once

#include <QImage>

namespace kelvara {

/// Recolours a band whose paper is white and whose ink is black so that what `preprocessImage` takes for ink is what is
/// darker than `cut`, a share of the way from ink to paper in the band's own grey levels (0 to 1). The filter chain
/// chooses its threshold by the band's average brightness; a band of known paper needs no choosing. `band` is
/// `Format_Grayscale8`; so is the result.
[[nodiscard]] QImage tonedForThreshold(const QImage& band, double cut);

} // namespace kelvara
