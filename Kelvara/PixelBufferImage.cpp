#include "Kelvara/PixelBufferImage.h"

namespace kelvara {

std::optional<QImage> cgImage(const CVPixelBuffer& buffer)
{
    buffer.lockBaseAddress();
    const auto rowBytes = static_cast<std::size_t>(buffer.width()) * 4;
    const bool drawable = buffer.baseAddress() && buffer.width() > 0 && buffer.height() > 0
        && buffer.bytesPerRow() >= rowBytes && buffer.pixelFormat() == kCVPixelFormatType_32BGRA;
    if (!drawable)
        return std::nullopt; // such a buffer stays locked: whoever reads it again finds it marked
    auto owner = std::make_unique<std::shared_ptr<const void>>(buffer.owner());
    QImage image(
        buffer.baseAddress(), buffer.width(), buffer.height(), static_cast<qsizetype>(buffer.bytesPerRow()),
        QImage::Format_ARGB32_Premultiplied, [](void* info) { delete static_cast<std::shared_ptr<const void>*>(info); },
        owner.get());
    if (image.isNull())
        return std::nullopt;
    static_cast<void>(owner.release()); // the image's now
    buffer.unlockBaseAddress();
    return image;
}

} // namespace kelvara
