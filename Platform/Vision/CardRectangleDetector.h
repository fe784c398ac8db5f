#pragma once

#include "Platform/Vision/VisionDetectors.h"

namespace kelvara {

/// Finds one card that lies roughly upright in the image and fills at least half of it, by its four sides: coarse
/// lines on quarter-size planes, the best quadrilateral of them, then each side fitted to sub-pixel edges. Corners are
/// those before rounding (where the side lines meet), to a fraction of a pixel, and may lie a little outside the
/// image. Work is bounded whatever the image shows.
///
/// Reports at most one observation, even when the limits allow more. Stateless, any thread, several at a time.
class CardRectangleDetector final : public RectangleDetector
{
public:
    [[nodiscard]] std::vector<VNRectangleObservation> detect(
        const VisionImage& image, const RectangleLimits& limits) const override;
};

} // namespace kelvara
