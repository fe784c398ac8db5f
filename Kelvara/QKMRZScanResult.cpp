#include "Kelvara/QKMRZScanResult.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Mrz/QKMRZResult.h"
#include "Platform/Vision/CIDetector.h"
#include "Platform/Vision/VisionDetectors.h"

#include <utility>

namespace kelvara {

namespace {

// Around the face as found, in points: the neck and the hair too, and more above than below.
constexpr double besideFace = 30;
constexpr double aboveAndBelowFace = 85;
constexpr double upwards = 50;

} // namespace

QKMRZScanResult::QKMRZScanResult(const QKMRZResult& mrzResult, UIImage image)
    : QKMRZScanResult(mrzResult, std::move(image), VisionDetectors::native())
{ }

QKMRZScanResult::QKMRZScanResult(
    const QKMRZResult& mrzResult, UIImage image, std::shared_ptr<const VisionDetectors> detectors)
    : documentImage(std::move(image)), documentType(mrzResult.documentType), countryCode(mrzResult.countryCode),
      surnames(mrzResult.surnames), givenNames(mrzResult.givenNames), documentNumber(mrzResult.documentNumber),
      nationality(mrzResult.nationality), birthDate(mrzResult.birthDate), sex(mrzResult.sex),
      expiryDate(mrzResult.expiryDate), personalNumber(mrzResult.personalNumber),
      personalNumber2(mrzResult.personalNumber2), m_detectors(std::move(detectors))
{ }

QKMRZScanResult::~QKMRZScanResult() = default;

const std::optional<UIImage>& QKMRZScanResult::faceImage()
{
    if (!m_faceImage)
        m_faceImage.emplace(findFaceImage());
    return *m_faceImage;
}

void QKMRZScanResult::setFaceImage(std::optional<UIImage> image)
{
    m_faceImage.emplace(std::move(image));
}

std::optional<UIImage> QKMRZScanResult::findFaceImage() const
{
    const std::optional<CIImage> image = CIImage::make(documentImage);
    if (!image)
        return std::nullopt;
    const CIContext& context = CIContext::shared();
    const auto detector = CIDetector::make(CIDetectorTypeFace, context,
        { { CIDetectorAccuracy, CIDetectorAccuracyLow } }, m_detectors ? m_detectors->faces : nullptr);
    if (!detector)
        fatalError("There is no face detector to find the portrait with");
    const std::vector<CIFeature> faces = detector->features(*image);
    if (faces.empty())
        return std::nullopt;
    const QRectF around = faces.front()
                              .bounds.adjusted(-besideFace, -aboveAndBelowFace, besideFace, aboveAndBelowFace)
                              .translated(0, upwards);
    const CIImage portrait = image->cropped(around);
    std::optional<QImage> bitmap = context.createCGImage(portrait, portrait.extent());
    if (!bitmap)
        return std::nullopt;
    return UIImage(*std::move(bitmap));
}

} // namespace kelvara
