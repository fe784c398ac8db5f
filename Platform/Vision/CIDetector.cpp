#include "Platform/Vision/CIDetector.h"

#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionImage.h"

#include <utility>

namespace kelvara {

std::unique_ptr<CIDetector> CIDetector::make(const QString& type, const CIContext& context,
    const QVariantMap& /*options*/, std::shared_ptr<const FaceDetector> faces)
{
    if (type != CIDetectorTypeFace || !faces)
        return nullptr;
    return std::unique_ptr<CIDetector>(new CIDetector(context, std::move(faces)));
}

CIDetector::CIDetector(const CIContext& context, std::shared_ptr<const FaceDetector> faces)
    : m_context(context), m_faces(std::move(faces))
{ }

std::vector<CIFeature> CIDetector::features(const CIImage& image) const
{
    const QRectF extent = image.extent();
    const std::optional<QImage> bitmap = m_context.createCGImage(image, extent);
    if (!bitmap)
        return {};
    const QSizeF size = bitmap->size();
    std::vector<CIFeature> found;
    for (const VNFaceObservation& face : m_faces->detect(VisionImage(*bitmap))) {
        const QRectF& box = face.boundingBox;
        found.push_back({ QRectF(extent.x() + box.x() * size.width(), extent.y() + box.y() * size.height(),
            box.width() * size.width(), box.height() * size.height()) });
    }
    return found;
}

} // namespace kelvara
