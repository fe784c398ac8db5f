#include "Platform/Imaging/PngEncoder.h"
#include "Platform/Imaging/UIImage.h"

#include <QBuffer>
#include <QImageWriter>

#include <algorithm>
#include <cmath>

namespace kelvara {

std::optional<QByteArray> UIImagePNGRepresentation(const UIImage& image)
{
    return imaging::encodePng(image.toQImage());
}

std::optional<QByteArray> UIImageJPEGRepresentation(const UIImage& image, double quality)
{
    if (image.isNull())
        return std::nullopt;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    const double limited = quality >= 0 ? std::min(quality, 1.0) : 0.0;
    writer.setQuality(int(std::lround(limited * 100)));
    if (!writer.write(image.toQImage()))
        return std::nullopt;
    return bytes;
}

} // namespace kelvara
