#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Vision/VNRequest.h"

namespace kelvara {

/// Limits of a rectangle search.
struct RectangleLimits
{
    /// Long side over short side of the quadrilateral (means of opposite sides); outside the limits nothing is found.
    float minimumAspectRatio = 0.5F;
    float maximumAspectRatio = 1.0F;
    /// The quadrilateral's short side over the image's short side.
    float minimumSize = 0.2F;
    int maximumObservations = 1;
};

/// Finds projected rectangles: cards, pages. Never the image's own border.
class KELVARA_EXPORT VNDetectRectanglesRequest final : public VNRequest
{
public:
    using VNRequest::VNRequest;
    RectangleLimits limits;
    std::optional<VNError> detect(const VisionImage& image, const VisionDetectors& detectors) override;
};

} // namespace kelvara
