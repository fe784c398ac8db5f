#pragma once

#include "Platform/Vision/VNRequest.h"

namespace kelvara {

/// Finds lines of text as bands. Ends with `VNError::Kind::NoDetector` where the services have no text detector.
class VNDetectTextRectanglesRequest final : public VNRequest
{
public:
    using VNRequest::VNRequest;
    std::optional<VNError> detect(const VisionImage& image, const VisionDetectors& detectors) override;
};

} // namespace kelvara
