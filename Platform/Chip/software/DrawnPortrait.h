#pragma once

#include <QImage>

namespace kelvara::chip::software {

/// A neutral silhouette of head and shoulders, 413 × 531 pixels, as it stands where somebody has no portrait; in
/// another colour for another person. Any thread; needs no application.
[[nodiscard]] QImage drawnPortrait(bool isAnotherPerson = false);

} // namespace kelvara::chip::software
