#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Vision/VNRequest.h"

namespace kelvara {

/// Finds lines of text as bands. Ends with `VNError::Kind::NoDetector` where the services have no text detector.
class KELVARA_EXPORT VNDetectTextRectanglesRequest final : public VNRequest
{
public:
    using VNRequest::VNRequest;
    std::optional<VNError> detect(const VisionImage& image, const VisionDetectors& detectors) override;
};

} // namespace kelvara
