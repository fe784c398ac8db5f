#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Vision/VNRequest.h"

namespace kelvara {

/// Finds upright faces, in the detector's order.
class KELVARA_EXPORT VNDetectFaceRectanglesRequest final : public VNRequest
{
public:
    using VNRequest::VNRequest;
    std::optional<VNError> detect(const VisionImage& image, const VisionDetectors& detectors) override;
};

} // namespace kelvara
