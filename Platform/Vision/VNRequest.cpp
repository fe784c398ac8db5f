#include "Platform/Vision/VNRequest.h"

#include "Platform/Vision/VNDetectFaceRectanglesRequest.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VNDetectTextRectanglesRequest.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionImage.h"

#include <exception>

namespace kelvara {

namespace {

/// Runs one detector, whoever wrote it, so that nothing of its failure but an error leaves the request.
template<typename Detector, typename Search>
std::optional<VNError> search(VNRequest::Results& results, const VisionImage& image,
    const std::shared_ptr<const Detector>& detector, const Search& run)
{
    results = std::monostate {};
    if (image.size().isEmpty())
        return VNError { VNError::Kind::InvalidImage, QStringLiteral("The image has no pixels.") };
    if (!detector)
        return VNError { VNError::Kind::NoDetector, QStringLiteral("There is no detector for this request.") };
    try {
        results = run(*detector);
    } catch (const std::exception& failure) {
        return VNError { VNError::Kind::DetectorFailed, QString::fromUtf8(failure.what()) };
    }
    return std::nullopt;
}

} // namespace

void VNRequest::complete(const std::optional<VNError>& error) const
{
    if (m_completion)
        m_completion(*this, error);
}

std::optional<VNError> VNDetectRectanglesRequest::detect(const VisionImage& image, const VisionDetectors& detectors)
{
    return search(m_results, image, detectors.rectangles,
        [&](const RectangleDetector& detector) { return detector.detect(image, limits); });
}

std::optional<VNError> VNDetectTextRectanglesRequest::detect(const VisionImage& image, const VisionDetectors& detectors)
{
    return search(m_results, image, detectors.text,
        [&](const TextRectangleDetector& detector) { return detector.detect(image); });
}

std::optional<VNError> VNDetectFaceRectanglesRequest::detect(const VisionImage& image, const VisionDetectors& detectors)
{
    return search(
        m_results, image, detectors.faces, [&](const FaceDetector& detector) { return detector.detect(image); });
}

} // namespace kelvara
