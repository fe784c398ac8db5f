#include "Platform/Capture/FrameTurner.h"

#include "Platform/Capture/FrameBufferPool.h"

#include <opencv2/core.hpp>

namespace kelvara {

bool isReadable(const CVPixelBuffer& picture)
{
    return picture.baseAddress() && picture.width() > 0 && picture.height() > 0
        && picture.pixelFormat() == kCVPixelFormatType_32BGRA
        && picture.bytesPerRow() >= static_cast<std::size_t>(picture.width()) * 4;
}

std::optional<CVPixelBuffer> turnedPicture(
    const CVPixelBuffer& picture, int rotation, bool mirrored, FrameBufferPool& pool)
{
    if (!isReadable(picture))
        return std::nullopt;
    const bool upended = rotation == 90 || rotation == 270;
    const FrameBufferPool::Buffer buffer
        = upended ? pool.take(picture.height(), picture.width()) : pool.take(picture.width(), picture.height());
    if (!buffer)
        return std::nullopt;
    const cv::Mat from(picture.height(), picture.width(), CV_8UC4,
        const_cast<std::uint8_t*>(picture.baseAddress()), // NOLINT: OpenCV has no read-only matrix; it is only read
        picture.bytesPerRow());
    cv::Mat to(buffer.height, buffer.width, CV_8UC4, buffer.bytes.get(), buffer.bytesPerRow());
    try {
        switch (rotation) {
        case 90:
            mirrored ? cv::transpose(from, to) : cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
            break;
        case 180:
            cv::flip(from, to, mirrored ? 0 : -1);
            break;
        case 270:
            cv::transpose(from, to);
            cv::flip(to, to, mirrored ? -1 : 0);
            break;
        default:
            mirrored ? cv::flip(from, to, 1) : from.copyTo(to);
            break;
        }
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
    return buffer.picture();
}

std::optional<CVPixelBuffer> FrameTurner::alreadyTurned(int rotation, bool mirrored) const
{
    if (rotation == 0 && !mirrored)
        return m_frame.imageBuffer();
    for (const Made& made : m_made)
        if (made.rotation == rotation && made.mirrored == mirrored)
            return made.picture;
    return std::nullopt;
}

std::optional<CVPixelBuffer> FrameTurner::turned(int rotation, bool mirrored)
{
    if (!m_frame.imageBuffer())
        return std::nullopt;
    if (auto made = alreadyTurned(rotation, mirrored))
        return made;
    auto picture = turnedPicture(*m_frame.imageBuffer(), rotation, mirrored, m_pool);
    if (picture)
        m_made.push_back({ rotation, mirrored, *picture });
    return picture;
}

} // namespace kelvara
