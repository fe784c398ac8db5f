#include "Platform/Capture/FrameConverter.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QSize>

#include <opencv2/imgproc.hpp>

#include <cstring>

namespace kelvara {

namespace {

int half(int length)
{
    return (length + 1) / 2;
}

/// Rows of pixels over a driver's memory; empty when the plane does not hold them.
cv::Mat rowsOf(const FramePlane& plane, int width, int height, int type)
{
    const auto row = static_cast<std::size_t>(width) * CV_ELEM_SIZE(type);
    const auto rows = static_cast<std::size_t>(height);
    // Divided rather than multiplied: a stride may be any number.
    const bool fits = plane.bytes && plane.bytesPerRow >= row && plane.size >= row
        && (rows <= 1 || plane.bytesPerRow <= (plane.size - row) / (rows - 1));
    if (!fits)
        return {};
    return { height, width, type, const_cast<std::uint8_t*>(plane.bytes), plane.bytesPerRow };
}

void forceOpaque(const cv::Mat& from, cv::Mat& to)
{
    for (int y = 0; y < from.rows; ++y) {
        // Rows may begin at any address, so pixels are moved as bytes.
        const std::uint8_t* source = from.ptr(y);
        std::uint8_t* target = to.ptr(y);
        for (int x = 0; x < from.cols; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, source + 4 * x, 4);
            pixel |= 0xff000000U;
            std::memcpy(target + 4 * x, &pixel, 4);
        }
    }
}

/// Four bytes a pixel in whatever order; `order` names for blue, green and red the byte each comes from.
bool convertPacked(const RawFrame& frame, const std::array<int, 3>& order, cv::Mat& to)
{
    const cv::Mat from = rowsOf(frame.planes[0], frame.width, frame.height, CV_8UC4);
    if (from.empty())
        return false;
    const std::array<int, 6> pairs { order[0], 0, order[1], 1, order[2], 2 };
    to.setTo(cv::Scalar::all(255));
    cv::mixChannels(&from, 1, &to, 1, pairs.data(), 3);
    return true;
}

/// 4:2:0, its colour differences interleaved.
bool convertTwoPlanes(const cv::Mat& luma, const cv::Mat& chroma, int code, cv::Mat& to)
{
    if (luma.empty() || chroma.empty())
        return false;
    if (luma.cols % 2 == 0 && luma.rows % 2 == 0) {
        cv::cvtColorTwoPlane(luma, chroma, to, code);
        return true;
    }
    // The conversion knows even sizes only; the colour differences reach over the edge as it is.
    cv::Mat even;
    cv::copyMakeBorder(luma, even, 0, luma.rows % 2, 0, luma.cols % 2, cv::BORDER_REPLICATE);
    cv::Mat wide;
    cv::cvtColorTwoPlane(even, chroma, wide, code);
    wide(cv::Rect(0, 0, luma.cols, luma.rows)).copyTo(to);
    return true;
}

bool convertInterleaved(const RawFrame& frame, int code, cv::Mat& to)
{
    return convertTwoPlanes(rowsOf(frame.planes[0], frame.width, frame.height, CV_8UC1),
        rowsOf(frame.planes[1], half(frame.width), half(frame.height), CV_8UC2), code, to);
}

bool convertPlanar(const RawFrame& frame, const FramePlane& u, const FramePlane& v, cv::Mat& to)
{
    const std::array<cv::Mat, 2> planes { rowsOf(u, half(frame.width), half(frame.height), CV_8UC1),
        rowsOf(v, half(frame.width), half(frame.height), CV_8UC1) };
    if (planes[0].empty() || planes[1].empty())
        return false;
    cv::Mat chroma;
    cv::merge(planes.data(), planes.size(), chroma);
    return convertTwoPlanes(
        rowsOf(frame.planes[0], frame.width, frame.height, CV_8UC1), chroma, cv::COLOR_YUV2BGRA_NV12, to);
}

/// 4:2:2: two pixels share four bytes, the last of an odd row is one of a pair as well.
bool convertPairs(const RawFrame& frame, int code, cv::Mat& to)
{
    const cv::Mat from = rowsOf(frame.planes[0], half(frame.width) * 2, frame.height, CV_8UC2);
    if (from.empty())
        return false;
    if (frame.width % 2 == 0) {
        cv::cvtColor(from, to, code);
        return true;
    }
    cv::Mat wide;
    cv::cvtColor(from, wide, code);
    wide.colRange(0, frame.width).copyTo(to);
    return true;
}

bool convertJpeg(const RawFrame& frame, cv::Mat& to)
{
    const FramePlane& plane = frame.planes[0];
    if (!plane.bytes || plane.size > 1U << 30)
        return false;
    // The header is asked first: a damaged one may claim a size that no memory holds.
    if (jpegSize({ plane.bytes, plane.size }) != QSize(frame.width, frame.height))
        return false;
    QByteArray bytes
        = QByteArray::fromRawData(reinterpret_cast<const char*>(plane.bytes), static_cast<qsizetype>(plane.size));
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    QImageReader reader(&file, "jpg");
    reader.setAutoTransform(false);
    // Decoded in place; only a grey JPEG comes in memory of its own.
    QImage image(to.data, to.cols, to.rows, static_cast<qsizetype>(to.step[0]), QImage::Format_RGB32);
    if (!reader.read(&image) || image.size() != QSize(to.cols, to.rows))
        return false;
    if (image.constBits() == to.data)
        return true;
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    const cv::Mat decoded(pixels.height(), pixels.width(), CV_8UC4, const_cast<uchar*>(pixels.constBits()),
        static_cast<std::size_t>(pixels.bytesPerLine()));
    decoded.copyTo(to);
    return true;
}

bool convertInto(const RawFrame& frame, cv::Mat& to)
{
    switch (frame.pixels) {
    case FramePixels::BGRA: {
        const cv::Mat from = rowsOf(frame.planes[0], frame.width, frame.height, CV_8UC4);
        if (from.empty())
            return false;
        forceOpaque(from, to);
        return true;
    }
    case FramePixels::RGBA:
        return convertPacked(frame, { 2, 1, 0 }, to);
    case FramePixels::ARGB:
        return convertPacked(frame, { 3, 2, 1 }, to);
    case FramePixels::ABGR:
        return convertPacked(frame, { 1, 2, 3 }, to);
    case FramePixels::NV12:
        return convertInterleaved(frame, cv::COLOR_YUV2BGRA_NV12, to);
    case FramePixels::NV21:
        return convertInterleaved(frame, cv::COLOR_YUV2BGRA_NV21, to);
    case FramePixels::I420:
        return convertPlanar(frame, frame.planes[1], frame.planes[2], to);
    case FramePixels::YV12:
        return convertPlanar(frame, frame.planes[2], frame.planes[1], to);
    case FramePixels::YUYV:
        return convertPairs(frame, cv::COLOR_YUV2BGRA_YUYV, to);
    case FramePixels::UYVY:
        return convertPairs(frame, cv::COLOR_YUV2BGRA_UYVY, to);
    case FramePixels::Jpeg:
        return convertJpeg(frame, to);
    }
    return false;
}

} // namespace

std::optional<CVPixelBuffer> FrameConverter::convert(const RawFrame& frame)
{
    const FrameBufferPool::Buffer buffer = m_pool.take(frame.width, frame.height);
    if (!buffer)
        return std::nullopt;
    cv::Mat to(buffer.height, buffer.width, CV_8UC4, buffer.bytes.get(), buffer.bytesPerRow());
    try {
        if (!convertInto(frame, to))
            return std::nullopt;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
    // A conversion that chose memory of its own would have left ours unwritten.
    if (to.data != buffer.bytes.get())
        return std::nullopt;
    return buffer.picture();
}

std::optional<QSize> jpegSize(std::span<const std::uint8_t> bytes)
{
    constexpr std::uint8_t kMarker = 0xff;
    if (bytes.size() < 4 || bytes[0] != kMarker || bytes[1] != 0xd8)
        return std::nullopt;
    // Drivers pad the end; what is cut off in the middle has no end marker.
    std::size_t end = bytes.size();
    while (end > 4 && bytes[end - 1] == 0)
        --end;
    if (bytes[end - 2] != kMarker || bytes[end - 1] != 0xd9)
        return std::nullopt;
    std::size_t at = 2;
    while (at + 4 <= end) {
        if (bytes[at] != kMarker)
            return std::nullopt;
        const std::uint8_t marker = bytes[at + 1];
        if (marker == kMarker) { // fill byte
            ++at;
            continue;
        }
        const std::size_t length = (std::size_t { bytes[at + 2] } << 8) + bytes[at + 3];
        const bool isFrameHeader
            = marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
        if (isFrameHeader) {
            if (length < 7 || at + 9 > end)
                return std::nullopt;
            return QSize((bytes[at + 7] << 8) + bytes[at + 8], (bytes[at + 5] << 8) + bytes[at + 6]);
        }
        if (length < 2 || marker == 0xda)
            return std::nullopt;
        at += 2 + length;
    }
    return std::nullopt;
}

} // namespace kelvara
