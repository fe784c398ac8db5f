#include "Platform/Capture/ReplayLayout.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <cstring>

namespace kelvara {

namespace {

constexpr std::uint8_t kNonsense = 0xa5;
constexpr int kJpegQuality = 95;

struct Color
{
    int red = 0;
    int green = 0;
    int blue = 0;
};

// BT.601, limited range, in 1/256.
std::uint8_t luma(Color c)
{
    return static_cast<std::uint8_t>(((66 * c.red + 129 * c.green + 25 * c.blue + 128) >> 8) + 16);
}

std::uint8_t blueDifference(Color c)
{
    return static_cast<std::uint8_t>(((-38 * c.red - 74 * c.green + 112 * c.blue + 128) >> 8) + 128);
}

std::uint8_t redDifference(Color c)
{
    return static_cast<std::uint8_t>(((112 * c.red - 94 * c.green - 18 * c.blue + 128) >> 8) + 128);
}

/// Reads a picture; beyond its edges the last row and column go on.
class Pixels
{
public:
    explicit Pixels(const CVPixelBuffer& picture) : m_picture(picture) { }

    [[nodiscard]] Color at(int x, int y) const
    {
        const std::uint8_t* pixel = m_picture.baseAddress()
            + static_cast<std::size_t>(std::min(y, m_picture.height() - 1)) * m_picture.bytesPerRow()
            + static_cast<std::size_t>(std::min(x, m_picture.width() - 1)) * 4;
        return { pixel[2], pixel[1], pixel[0] };
    }

    /// The mean of a block.
    [[nodiscard]] Color mean(int x, int y, int width, int height) const
    {
        Color sum;
        for (int row = y; row < y + height; ++row)
            for (int column = x; column < x + width; ++column) {
                const Color c = at(column, row);
                sum = { sum.red + c.red, sum.green + c.green, sum.blue + c.blue };
            }
        const int count = width * height;
        return { (sum.red + count / 2) / count, (sum.green + count / 2) / count, (sum.blue + count / 2) / count };
    }

private:
    const CVPixelBuffer& m_picture;
};

/// Hands out planes one after the other from one piece of memory.
class Planes
{
public:
    Planes(std::vector<std::uint8_t>& bytes, int rowPadding)
        : m_bytes(bytes), m_padding(static_cast<std::size_t>(std::max(rowPadding, 0)))
    {
        m_bytes.clear();
    }

    /// Room for a plane; its number.
    int add(int rowBytes, int rows)
    {
        const std::size_t stride = static_cast<std::size_t>(rowBytes) + m_padding;
        m_planes.push_back({ m_bytes.size(), stride, stride * static_cast<std::size_t>(rows) });
        m_bytes.resize(m_bytes.size() + m_planes.back().size, kNonsense);
        return static_cast<int>(m_planes.size()) - 1;
    }

    [[nodiscard]] std::uint8_t* row(int plane, int y)
    {
        const Place& place = m_planes[static_cast<std::size_t>(plane)];
        return m_bytes.data() + place.offset + place.stride * static_cast<std::size_t>(y);
    }

    void tell(RawFrame& frame) const
    {
        for (std::size_t i = 0; i < m_planes.size(); ++i)
            frame.planes[i] = { m_bytes.data() + m_planes[i].offset, m_planes[i].size, m_planes[i].stride };
    }

private:
    struct Place
    {
        std::size_t offset;
        std::size_t stride;
        std::size_t size;
    };
    std::vector<std::uint8_t>& m_bytes;
    const std::size_t m_padding;
    std::vector<Place> m_planes;
};

void layOutLuma(const CVPixelBuffer& picture, Planes& planes)
{
    const Pixels pixels(picture);
    const int plane = planes.add(picture.width(), picture.height());
    for (int y = 0; y < picture.height(); ++y) {
        std::uint8_t* row = planes.row(plane, y);
        for (int x = 0; x < picture.width(); ++x)
            row[x] = luma(pixels.at(x, y));
    }
}

void layOutNv12(const CVPixelBuffer& picture, Planes& planes)
{
    const Pixels pixels(picture);
    layOutLuma(picture, planes);
    const int width = (picture.width() + 1) / 2;
    const int height = (picture.height() + 1) / 2;
    const int plane = planes.add(width * 2, height);
    for (int y = 0; y < height; ++y) {
        std::uint8_t* row = planes.row(plane, y);
        for (int x = 0; x < width; ++x) {
            const Color mean = pixels.mean(2 * x, 2 * y, 2, 2);
            *row++ = blueDifference(mean);
            *row++ = redDifference(mean);
        }
    }
}

void layOutI420(const CVPixelBuffer& picture, Planes& planes)
{
    const Pixels pixels(picture);
    layOutLuma(picture, planes);
    const int width = (picture.width() + 1) / 2;
    const int height = (picture.height() + 1) / 2;
    const int blue = planes.add(width, height);
    const int red = planes.add(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Color mean = pixels.mean(2 * x, 2 * y, 2, 2);
            planes.row(blue, y)[x] = blueDifference(mean);
            planes.row(red, y)[x] = redDifference(mean);
        }
}

void layOutYuyv(const CVPixelBuffer& picture, Planes& planes)
{
    const Pixels pixels(picture);
    const int pairs = (picture.width() + 1) / 2;
    const int plane = planes.add(pairs * 4, picture.height());
    for (int y = 0; y < picture.height(); ++y) {
        std::uint8_t* row = planes.row(plane, y);
        for (int x = 0; x < pairs; ++x) {
            const Color mean = pixels.mean(2 * x, y, 2, 1);
            *row++ = luma(pixels.at(2 * x, y));
            *row++ = blueDifference(mean);
            *row++ = luma(pixels.at(2 * x + 1, y));
            *row++ = redDifference(mean);
        }
    }
}

void layOutBgra(const CVPixelBuffer& picture, Planes& planes)
{
    const int plane = planes.add(picture.width() * 4, picture.height());
    for (int y = 0; y < picture.height(); ++y)
        std::memcpy(planes.row(plane, y), picture.baseAddress() + static_cast<std::size_t>(y) * picture.bytesPerRow(),
            static_cast<std::size_t>(picture.width()) * 4);
}

void layOutJpeg(const CVPixelBuffer& picture, std::vector<std::uint8_t>& bytes)
{
    const QImage image(picture.baseAddress(), picture.width(), picture.height(),
        static_cast<qsizetype>(picture.bytesPerRow()), QImage::Format_RGB32);
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    bytes.clear();
    if (image.save(&file, "jpg", kJpegQuality))
        bytes.assign(file.data().begin(), file.data().end());
}

} // namespace

RawFrame layOut(
    const CVPixelBuffer& picture, ReplayPixelLayout layout, int rowPadding, std::vector<std::uint8_t>& bytes)
{
    RawFrame frame { FramePixels::BGRA, picture.width(), picture.height(), {} };
    Planes planes(bytes, rowPadding);
    switch (layout) {
    case ReplayPixelLayout::BGRA:
        layOutBgra(picture, planes);
        break;
    case ReplayPixelLayout::NV12:
        frame.pixels = FramePixels::NV12;
        layOutNv12(picture, planes);
        break;
    case ReplayPixelLayout::I420:
        frame.pixels = FramePixels::I420;
        layOutI420(picture, planes);
        break;
    case ReplayPixelLayout::YUYV:
        frame.pixels = FramePixels::YUYV;
        layOutYuyv(picture, planes);
        break;
    case ReplayPixelLayout::MJPEG:
        frame.pixels = FramePixels::Jpeg;
        layOutJpeg(picture, bytes);
        frame.planes[0] = { bytes.data(), bytes.size(), 0 };
        return frame;
    }
    planes.tell(frame);
    return frame;
}

} // namespace kelvara
