#include "Platform/Capture/QtFrame.h"
#include "Platform/Capture/ReplayLayout.h"
#include "Tests/Capture/CaptureRig.h"

#include <QVideoFrame>
#include <QVideoFrameFormat>

#include <gtest/gtest.h>

#include <cstring>

namespace kelvara::test {
namespace {

CVPixelBuffer pictureOf(const QImage& image)
{
    const auto owner = std::make_shared<const QImage>(image);
    return CVPixelBuffer(
        owner, owner->constBits(), owner->width(), owner->height(), static_cast<std::size_t>(owner->bytesPerLine()));
}

/// Soft colours everywhere: what halved colour differences cannot keep is not in it.
QImage gradient(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                qRgb(40 + 170 * x / size.width(), 200 - 150 * y / size.height(),
                    60 + 120 * (x + y) / (size.width() + size.height())));
    return image;
}

int largestDifference(const QImage& a, const QImage& b)
{
    int largest = a.size() == b.size() ? 0 : 1000;
    for (int y = 0; y < a.height() && largest < 1000; ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            largest = std::max({ largest, std::abs(p.red() - q.red()), std::abs(p.green() - q.green()),
                std::abs(p.blue() - q.blue()) });
        }
    return largest;
}

const std::array kLayouts { ReplayPixelLayout::BGRA, ReplayPixelLayout::NV12, ReplayPixelLayout::I420,
    ReplayPixelLayout::YUYV, ReplayPixelLayout::MJPEG };

TEST(Converter, BringsEveryLayoutBack)
{
    FrameConverter converter;
    std::vector<std::uint8_t> bytes;
    for (const auto layout : kLayouts)
        for (const QSize size :
            { QSize(64, 48), QSize(63, 47), QSize(64, 47), QSize(63, 48), QSize(2, 2), QSize(1, 1) })
            for (const int padding : { 0, 1, 32 }) {
                const QImage image = gradient(size);
                const auto back = converter.convert(layOut(pictureOf(image), layout, padding, bytes));
                ASSERT_TRUE(back) << int(layout) << " " << size.width() << "x" << size.height() << "+" << padding;
                const QImage got = imageOf(*back);
                // Colour differences are shared by neighbours, which in a tiny gradient differ a lot.
                const int tolerance = layout == ReplayPixelLayout::BGRA ? 0 : size.width() < 8 ? 60 : 12;
                EXPECT_LE(largestDifference(image, got), tolerance)
                    << int(layout) << " " << size.width() << "+" << padding;
                EXPECT_EQ(qAlpha(got.pixel(size.width() - 1, size.height() - 1)), 255);
            }
}

TEST(Converter, KnowsTheColoursOfWebcams)
{
    // BT.601, limited range: what the standard says of pure colours, within rounding.
    struct Colour
    {
        std::uint8_t y, u, v;
        QRgb rgb;
    };
    FrameConverter converter;
    for (const Colour& c : { Colour { 16, 128, 128, qRgb(0, 0, 0) }, Colour { 235, 128, 128, qRgb(255, 255, 255) },
             Colour { 81, 90, 240, qRgb(255, 0, 0) }, Colour { 145, 54, 34, qRgb(0, 255, 0) },
             Colour { 41, 240, 110, qRgb(0, 0, 255) } }) {
        const std::array<std::uint8_t, 4> luma { c.y, c.y, c.y, c.y };
        const std::array<std::uint8_t, 2> uv { c.u, c.v };
        const std::array<std::uint8_t, 2> vu { c.v, c.u };
        const std::array<std::uint8_t, 8> yuyv { c.y, c.u, c.y, c.v, c.y, c.u, c.y, c.v };
        const std::array<std::uint8_t, 8> uyvy { c.u, c.y, c.v, c.y, c.u, c.y, c.v, c.y };
        const FramePlane y { luma.data(), 4, 2 };
        const FramePlane u { &uv[0], 1, 1 };
        const FramePlane v { &uv[1], 1, 1 };
        QImage wanted(2, 2, QImage::Format_RGB32);
        wanted.fill(c.rgb);
        for (const RawFrame& raw : { RawFrame { FramePixels::NV12, 2, 2, { y, FramePlane { uv.data(), 2, 2 } } },
                 RawFrame { FramePixels::NV21, 2, 2, { y, FramePlane { vu.data(), 2, 2 } } },
                 RawFrame { FramePixels::I420, 2, 2, { y, u, v } }, RawFrame { FramePixels::YV12, 2, 2, { y, v, u } },
                 RawFrame { FramePixels::YUYV, 2, 2, { FramePlane { yuyv.data(), 8, 4 } } },
                 RawFrame { FramePixels::UYVY, 2, 2, { FramePlane { uyvy.data(), 8, 4 } } } }) {
            const auto picture = converter.convert(raw);
            ASSERT_TRUE(picture) << int(raw.pixels);
            EXPECT_LE(largestDifference(imageOf(*picture), wanted), 2) << int(raw.pixels) << " " << std::hex << c.rgb;
        }
    }
}

TEST(Converter, OrdersPackedBytesAndForcesAlpha)
{
    FrameConverter converter;
    const auto pixel = [&](FramePixels pixels, std::array<std::uint8_t, 4> bytes) {
        const auto picture = converter.convert({ pixels, 1, 1, { FramePlane { bytes.data(), 4, 4 } } });
        return picture ? imageOf(*picture).pixel(0, 0) : 0U;
    };
    EXPECT_EQ(pixel(FramePixels::BGRA, { 3, 2, 1, 77 }), 0xff010203);
    EXPECT_EQ(pixel(FramePixels::RGBA, { 1, 2, 3, 77 }), 0xff010203);
    EXPECT_EQ(pixel(FramePixels::ARGB, { 77, 1, 2, 3 }), 0xff010203);
    EXPECT_EQ(pixel(FramePixels::ABGR, { 77, 3, 2, 1 }), 0xff010203);
}

TEST(Converter, DropsDamagedFrames)
{
    FrameConverter converter;
    std::vector<std::uint8_t> bytes;
    for (const auto layout : kLayouts) {
        const RawFrame whole = layOut(pictureOf(gradient({ 33, 21 })), layout, 3, bytes);
        ASSERT_TRUE(converter.convert(whole));
        for (std::size_t plane = 0; plane < 3 && whole.planes[plane].bytes; ++plane) {
            const FramePlane& good = whole.planes[plane];
            // A byte short of the last row (its padding may be missing), no bytes, rows that overlap, no sane stride.
            for (const FramePlane& bad : { FramePlane { good.bytes, good.size - 3 - 1, good.bytesPerRow },
                     FramePlane { good.bytes, 0, good.bytesPerRow },
                     FramePlane { nullptr, good.size, good.bytesPerRow }, FramePlane { good.bytes, good.size, 1 },
                     FramePlane { good.bytes, good.size, ~std::size_t { 0 } } }) {
                if (layout == ReplayPixelLayout::MJPEG && bad.bytes && bad.size == good.size)
                    continue; // a JPEG has no stride
                RawFrame damaged = whole;
                damaged.planes[plane] = bad;
                EXPECT_FALSE(converter.convert(damaged)) << int(layout) << " " << plane << " " << bad.size;
            }
        }
        RawFrame damaged = whole;
        for (const auto& [width, height] :
            { std::pair(0, 21), std::pair(33, -1), std::pair(33, 1 << 20), std::pair(1 << 30, 1 << 30) }) {
            damaged.width = width;
            damaged.height = height;
            EXPECT_FALSE(converter.convert(damaged));
        }
    }
}

TEST(Converter, SurvivesAnyDamageToAJpeg)
{
    FrameConverter converter;
    std::vector<std::uint8_t> bytes;
    const RawFrame whole = layOut(pictureOf(gradient({ 40, 24 })), ReplayPixelLayout::MJPEG, 0, bytes);
    const std::vector<std::uint8_t> good = bytes;
    for (std::size_t length = 0; length < good.size(); ++length) {
        RawFrame cut = whole;
        cut.planes[0].size = length;
        EXPECT_FALSE(converter.convert(cut)) << length;
    }
    int kept = 0;
    for (std::size_t i = 0; i < good.size(); ++i) {
        bytes = good;
        bytes[i] ^= 0xff;
        const auto picture
            = converter.convert({ FramePixels::Jpeg, 40, 24, { FramePlane { bytes.data(), bytes.size(), 0 } } });
        kept += picture ? 1 : 0;
        if (picture) {
            EXPECT_EQ(picture->size(), QSize(40, 24));
        }
    }
    EXPECT_GT(kept, 0) << "damage in the pixels alone shows in the picture";
    // Padding after the end is no damage.
    bytes = good;
    bytes.resize(good.size() + 512);
    EXPECT_TRUE(converter.convert({ FramePixels::Jpeg, 40, 24, { FramePlane { bytes.data(), bytes.size(), 0 } } }));
}

TEST(QtFrame, MapsWhatQtDelivers)
{
    FrameConverter converter;
    std::vector<std::uint8_t> bytes;
    const QImage image = gradient({ 64, 48 });
    EXPECT_FALSE(pictureOf(QVideoFrame(), converter));
    const std::array formats { std::pair(ReplayPixelLayout::NV12, QVideoFrameFormat::Format_NV12),
        std::pair(ReplayPixelLayout::I420, QVideoFrameFormat::Format_YUV420P),
        std::pair(ReplayPixelLayout::YUYV, QVideoFrameFormat::Format_YUYV),
        std::pair(ReplayPixelLayout::BGRA, QVideoFrameFormat::Format_BGRX8888) };
    for (const auto& [layout, format] : formats) {
        const RawFrame raw = layOut(pictureOf(image), layout, 0, bytes);
        QVideoFrame frame(QVideoFrameFormat(image.size(), format));
        ASSERT_TRUE(frame.map(QVideoFrame::WriteOnly));
        for (int plane = 0; plane < frame.planeCount(); ++plane) {
            const FramePlane& from = raw.planes[static_cast<std::size_t>(plane)];
            const std::size_t rows = from.size / from.bytesPerRow;
            for (std::size_t row = 0; row < rows; ++row)
                std::memcpy(frame.bits(plane) + row * static_cast<std::size_t>(frame.bytesPerLine(plane)),
                    from.bytes + row * from.bytesPerRow, from.bytesPerRow);
        }
        frame.unmap();
        const auto picture = pictureOf(frame, converter);
        ASSERT_TRUE(picture) << int(format);
        EXPECT_LE(largestDifference(imageOf(*picture), image), 12) << int(format);

        frame.setRotationAngle(QVideoFrame::Rotation90);
        const auto turned = pictureOf(frame, converter);
        ASSERT_TRUE(turned);
        EXPECT_EQ(turned->size(), QSize(48, 64));
        EXPECT_LE(largestDifference(imageOf(*turned), image.transformed(QTransform().rotate(90))), 12);
    }
}

} // namespace
} // namespace kelvara::test
