#include "Platform/Capture/QtFrame.h"

#include "Platform/Capture/FrameTurner.h"

#include <QImage>
#include <QVideoFrame>
#include <QVideoFrameFormat>

namespace kelvara {

namespace {

std::optional<FramePixels> pixelsOf(QVideoFrameFormat::PixelFormat format)
{
    switch (format) {
    case QVideoFrameFormat::Format_BGRA8888:
    case QVideoFrameFormat::Format_BGRA8888_Premultiplied:
    case QVideoFrameFormat::Format_BGRX8888:
        return FramePixels::BGRA;
    case QVideoFrameFormat::Format_RGBA8888:
    case QVideoFrameFormat::Format_RGBX8888:
        return FramePixels::RGBA;
    case QVideoFrameFormat::Format_ARGB8888:
    case QVideoFrameFormat::Format_ARGB8888_Premultiplied:
    case QVideoFrameFormat::Format_XRGB8888:
        return FramePixels::ARGB;
    case QVideoFrameFormat::Format_ABGR8888:
    case QVideoFrameFormat::Format_XBGR8888:
        return FramePixels::ABGR;
    case QVideoFrameFormat::Format_NV12:
        return FramePixels::NV12;
    case QVideoFrameFormat::Format_NV21:
        return FramePixels::NV21;
    case QVideoFrameFormat::Format_YUV420P:
        return FramePixels::I420;
    case QVideoFrameFormat::Format_YV12:
        return FramePixels::YV12;
    case QVideoFrameFormat::Format_YUYV:
        return FramePixels::YUYV;
    case QVideoFrameFormat::Format_UYVY:
        return FramePixels::UYVY;
    case QVideoFrameFormat::Format_Jpeg:
        return FramePixels::Jpeg;
    default:
        return std::nullopt;
    }
}

/// What Qt itself makes of the frame: slow, but it knows every layout, and turns.
std::optional<CVPixelBuffer> throughImage(const QVideoFrame& frame, FrameConverter& converter)
{
    const QImage image = frame.toImage().convertToFormat(QImage::Format_RGB32);
    RawFrame raw { FramePixels::BGRA, image.width(), image.height(), {} };
    raw.planes[0] = { image.constBits(), static_cast<std::size_t>(image.sizeInBytes()),
        static_cast<std::size_t>(image.bytesPerLine()) };
    return converter.convert(raw);
}

std::optional<CVPixelBuffer> converted(QVideoFrame& frame, FramePixels pixels, FrameConverter& converter)
{
    if (!frame.map(QVideoFrame::ReadOnly))
        return std::nullopt;
    RawFrame raw { pixels, frame.width(), frame.height(), {} };
    for (int i = 0; i < std::min(frame.planeCount(), 3); ++i)
        raw.planes[static_cast<std::size_t>(i)]
            = { frame.bits(i), static_cast<std::size_t>(std::max(frame.mappedBytes(i), 0)),
                  static_cast<std::size_t>(std::max(frame.bytesPerLine(i), 0)) };
    auto picture = converter.convert(raw);
    frame.unmap();
    return picture;
}

} // namespace

std::optional<CVPixelBuffer> pictureOf(const QVideoFrame& delivered, FrameConverter& converter)
{
    if (!delivered.isValid())
        return std::nullopt;
    const auto pixels = pixelsOf(delivered.pixelFormat());
    if (!pixels)
        return throughImage(delivered, converter);
    QVideoFrame frame = delivered;
    auto picture = converted(frame, *pixels, converter);
    if (picture && frame.surfaceFormat().scanLineDirection() == QVideoFrameFormat::BottomToTop)
        picture = turnedPicture(*picture, 180, true, converter.pool());
    const int rotation = static_cast<int>(frame.rotationAngle());
    if (picture && (rotation != 0 || frame.mirrored()))
        picture = turnedPicture(*picture, rotation, frame.mirrored(), converter.pool());
    return picture;
}

} // namespace kelvara
