#include "Platform/Vision/CardRectangleDetector.h"

namespace kelvara
{

// The search itself is not in yet: until it is, no frame shows a card.
std::vector<VNRectangleObservation> CardRectangleDetector::detect(const VisionImage&, const RectangleLimits&) const
{
    return {};
}

} // namespace kelvara
