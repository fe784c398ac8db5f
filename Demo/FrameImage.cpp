#include "Demo/FrameImage.h"

namespace kelvara::demo {

QImage frameImage(const CMSampleBuffer& delivery)
{
    const auto& buffer = delivery.imageBuffer();
    if (!buffer || !buffer->baseAddress() || buffer->pixelFormat() != kCVPixelFormatType_32BGRA)
        return {};
    auto* owner = new CVPixelBuffer(*buffer); // freed by the image's clean-up
    return QImage(
        buffer->baseAddress(), buffer->width(), buffer->height(), static_cast<qsizetype>(buffer->bytesPerRow()),
        QImage::Format_ARGB32_Premultiplied, [](void* held) { delete static_cast<CVPixelBuffer*>(held); }, owner);
}

} // namespace kelvara::demo
