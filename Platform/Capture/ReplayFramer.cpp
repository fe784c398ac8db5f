#include "Platform/Capture/ReplayFramer.h"

#include "Platform/Capture/FrameTurner.h"
#include "Platform/Capture/ReplayLayout.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace kelvara {

namespace {

cv::Mat matrixOf(const CVPixelBuffer& picture)
{
    return { picture.height(), picture.width(), CV_8UC4, const_cast<std::uint8_t*>(picture.baseAddress()),
        picture.bytesPerRow() };
}

bool isOpaque(const QImage& image)
{
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb all = ~QRgb { 0 };
        for (int x = 0; x < width; ++x) // every frame comes by here: many pixels at a time
            all &= row[x];
        if (qAlpha(all) != 255)
            return false;
    }
    return true;
}

bool isBgra(const QImage& image)
{
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32
        || image.format() == QImage::Format_ARGB32_Premultiplied;
}

/// The image's pixels as they are, without a copy where they are opaque 32-bit pixels already.
CVPixelBuffer pictureOf(const QImage& image)
{
    QImage pixels = image;
    if (!isBgra(image) || !isOpaque(image)) {
        // Through a format without alpha and back: whatever alpha says, the colours stay.
        pixels = isBgra(image) ? image.copy() : image.convertToFormat(QImage::Format_RGB32);
        for (int y = 0; y < pixels.height(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
            for (int x = 0; x < pixels.width(); ++x)
                row[x] |= 0xff000000U;
        }
    }
    auto owner = std::make_shared<const QImage>(std::move(pixels));
    return CVPixelBuffer(
        owner, owner->constBits(), owner->width(), owner->height(), static_cast<std::size_t>(owner->bytesPerLine()));
}

/// Scaled to fill the size, cut about the centre.
std::optional<CVPixelBuffer> covering(const CVPixelBuffer& picture, const QSize& size, FrameBufferPool& pool)
{
    const auto buffer = pool.take(size.width(), size.height());
    if (!buffer)
        return std::nullopt;
    const double scale = std::max(double(size.width()) / picture.width(), double(size.height()) / picture.height());
    const int width = std::clamp(static_cast<int>(std::lround(size.width() / scale)), 1, picture.width());
    const int height = std::clamp(static_cast<int>(std::lround(size.height() / scale)), 1, picture.height());
    const cv::Rect visible((picture.width() - width) / 2, (picture.height() - height) / 2, width, height);
    cv::Mat to(size.height(), size.width(), CV_8UC4, buffer.bytes.get(), buffer.bytesPerRow());
    cv::resize(matrixOf(picture)(visible), to, to.size(), 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);
    return buffer.picture();
}

std::size_t bytesOf(const CVPixelBuffer& frame)
{
    return frame.bytesPerRow() * static_cast<std::size_t>(frame.height());
}

} // namespace

std::optional<CVPixelBuffer> ReplayFramer::frame(const QImage& picture)
{
    for (const Kept& kept : m_kept)
        if (kept.picture.cacheKey() == picture.cacheKey())
            return kept.frame;
    std::optional<CVPixelBuffer> made;
    try {
        made = make(picture);
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
    if (!made)
        return std::nullopt;
    m_keptBytes += bytesOf(*made);
    m_kept.push_front({ picture, *made });
    while (m_kept.size() > 1 && m_keptBytes > m_cacheBytes) {
        m_keptBytes -= bytesOf(m_kept.back().frame);
        m_kept.pop_back();
    }
    return made;
}

std::optional<CVPixelBuffer> ReplayFramer::make(const QImage& picture)
{
    std::optional<CVPixelBuffer> frame = pictureOf(picture);
    if (m_options.sensorRotation != 0)
        frame = turnedPicture(*frame, (360 - m_options.sensorRotation % 360) % 360, false, m_pool);
    if (frame && !m_options.size.isEmpty() && frame->size() != m_options.size)
        frame = covering(*frame, m_options.size, m_pool);
    if (frame && (m_options.layout != ReplayPixelLayout::BGRA || m_options.rowPadding > 0))
        frame = m_converter.convert(layOut(*frame, m_options.layout, m_options.rowPadding, m_laidOut));
    return frame;
}

} // namespace kelvara
