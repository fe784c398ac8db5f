#include "Platform/Imaging/CIImage.h"

#include "Platform/Imaging/BitmapNode.h"
#include "Platform/Imaging/CIFilter.h"
#include "Platform/Imaging/CropNode.h"
#include "Platform/Imaging/OrientNode.h"
#include "Platform/Imaging/PixelRect.h"

namespace kelvara {

CIImage::CIImage(const QImage& bitmap) : m_node(std::make_shared<imaging::BitmapNode>(bitmap)) { }

CIImage::CIImage(std::shared_ptr<const imaging::Node> node) : m_node(std::move(node)) { }

std::optional<CIImage> CIImage::make(const UIImage& image)
{
    return image.isNull() ? std::nullopt : std::optional<CIImage>(image.toQImage());
}

QRectF CIImage::extent() const
{
    return m_node->extent();
}

CIImage CIImage::cropped(const QRectF& rect) const
{
    const QRect extent = m_node->extent();
    const auto integral = imaging::integralRect(rect);
    const QRect part = integral ? *integral & extent : QRect();
    if (part.isEmpty())
        return CIImage(QImage());
    if (part == extent)
        return *this;
    if (const auto* bitmap = dynamic_cast<const imaging::BitmapNode*>(m_node.get()))
        return CIImage(bitmap->cropped(part));
    return CIImage(std::make_shared<imaging::CropNode>(m_node, part));
}

CIImage CIImage::oriented(CGImagePropertyOrientation orientation) const
{
    const imaging::OrientationSteps steps = imaging::stepsUpright(orientation);
    if (orientation == CGImagePropertyOrientation::Up || m_node->extent().isEmpty())
        return *this;
    return CIImage(std::make_shared<imaging::OrientNode>(m_node, steps));
}

std::optional<CIImage> CIImage::applyingFilter(const QString& name, const QVariantMap& parameters) const
{
    const std::unique_ptr<CIFilter> filter = CIFilter::filter(name, parameters);
    if (!filter)
        return std::nullopt;
    filter->setInputImage(*this);
    return filter->outputImage();
}

} // namespace kelvara
