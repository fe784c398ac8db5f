#include "Platform/Imaging/CIImage.h"
#include "Platform/Imaging/CIContext.h"
#include "Tests/Imaging/Pictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// A recipe with work in it (so that it goes through linear light) that changes nothing.
CIImage worked(const CIImage& image)
{
    return image.applyingFilter(QStringLiteral("CIColorControls")).value();
}

TEST(CIImage, ABitmapRendersAsItself)
{
    const QImage bitmaps[] = { pictures::photo(33, 17), pictures::photo(33, 17, QImage::Format_RGB888),
        pictures::photo(33, 17, QImage::Format_Grayscale8), pictures::photo(33, 17, QImage::Format_Indexed8),
        pictures::translucent(33, 17, QImage::Format_ARGB32_Premultiplied),
        pictures::translucent(33, 17, QImage::Format_ARGB32), pictures::translucent(33, 17, QImage::Format_RGBA8888) };
    for (const QImage& bitmap : bitmaps) {
        const CIImage image(bitmap);
        EXPECT_EQ(image.extent(), QRectF(0, 0, 33, 17));
        const QImage expected = bitmap.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(pictures::render(image), expected) << bitmap.format();
        EXPECT_EQ(pictures::render(worked(image)), expected) << bitmap.format() << " through linear light";
    }
}

TEST(CIImage, EveryPremultipliedColourSurvivesLinearLight)
{
    QImage bitmap(256, 256, QImage::Format_ARGB32_Premultiplied);
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int color = 0; color < 256; ++color)
            bitmap.setPixel(color, alpha, qRgba(std::min(color, alpha), alpha / 2, std::max(0, alpha - color), alpha));
    }
    const QImage rendered = pictures::render(worked(CIImage(bitmap)));
    EXPECT_EQ(rendered, bitmap);
}

TEST(CIImage, TheUndefinedByteOfAnOpaqueFormatIsOpaque)
{
    QImage bitmap(4, 4, QImage::Format_ARGB32);
    bitmap.fill(0x00336699);
    ASSERT_TRUE(bitmap.reinterpretAsFormat(QImage::Format_RGB32));
    EXPECT_EQ(pictures::render(CIImage(bitmap)).pixel(1, 1), 0xFF336699);
    EXPECT_EQ(pictures::render(worked(CIImage(bitmap))).pixel(1, 1), 0xFF336699);
}

TEST(CIImage, CropsCountFromTheBottomLeft)
{
    const QImage bitmap = pictures::photo(40, 30, QImage::Format_ARGB32_Premultiplied);
    struct Row
    {
        QRectF rect;
        QRect extent; ///< origin bottom-left
    };
    const Row rows[] = {
        { { 5, 20, 10, 10 }, { 5, 20, 10, 10 } },
        { { 5.5, 2.5, 10, 10 }, { 5, 2, 11, 11 } },
        { { -10, -10, 20, 20 }, { 0, 0, 10, 10 } },
        { { 0, 0, 40, 30 }, { 0, 0, 40, 30 } },
        { { 39, 29, 10, 10 }, { 39, 29, 1, 1 } },
    };
    for (const Row& row : rows) {
        const QImage expected = bitmap.copy(
            row.extent.x(), 30 - row.extent.y() - row.extent.height(), row.extent.width(), row.extent.height());
        for (const CIImage& image : { CIImage(bitmap), worked(CIImage(bitmap)) }) {
            const CIImage cropped = image.cropped(row.rect);
            EXPECT_EQ(cropped.extent(), QRectF(row.extent));
            EXPECT_EQ(pictures::render(cropped), expected);
            EXPECT_EQ(pictures::render(worked(cropped)), expected);
            // A crop of a crop still speaks the first image's coordinates.
            EXPECT_EQ(pictures::render(cropped.cropped(image.extent())), expected);
        }
    }
}

TEST(CIImage, NothingLeftIsAnEmptyImage)
{
    const CIImage image(pictures::photo(40, 30));
    for (const QRectF& rect : { QRectF(40, 0, 5, 5), QRectF(), QRectF(std::nan(""), 0, 5, 5) }) {
        CIImage none = image.cropped(rect);
        EXPECT_TRUE(none.extent().isEmpty());
        EXPECT_FALSE(CIContext::shared().createCGImage(none, none.extent()));
        none = worked(none.oriented(CGImagePropertyOrientation::Left)).cropped({ 0, 0, 9, 9 });
        EXPECT_TRUE(none.extent().isEmpty());
        const auto transparent = CIContext::shared().createCGImage(none, QRectF(0, 0, 2, 2));
        ASSERT_TRUE(transparent);
        EXPECT_EQ(transparent->pixel(1, 1), 0U);
    }
    EXPECT_FALSE(CIImage::make(UIImage()));
    EXPECT_TRUE(CIImage(QImage()).extent().isEmpty());
}

TEST(CIImage, OrientsLikeImages)
{
    const QImage bitmap = pictures::photo(37, 22, QImage::Format_ARGB32_Premultiplied);
    for (int raw = 1; raw <= 8; ++raw) {
        const auto orientation = CGImagePropertyOrientation(raw);
        const UIImage expected(bitmap, 1.0, imageOrientation(orientation));
        for (const CIImage& image : { CIImage(bitmap), worked(CIImage(bitmap)) }) {
            const CIImage oriented = image.oriented(orientation);
            EXPECT_EQ(oriented.extent(), QRectF(QPointF(), expected.size())) << raw;
            EXPECT_EQ(pictures::render(oriented), expected.toQImage()) << raw;
            EXPECT_EQ(pictures::render(oriented.cropped({ 3, 4, 9, 11 })),
                pictures::render(CIImage(expected).cropped({ 3, 4, 9, 11 })))
                << raw;
        }
        EXPECT_EQ(pictures::render(CIImage::make(expected).value()), expected.toQImage());
    }
    // The lower-left corner stays.
    const CIImage turned = CIImage(bitmap).cropped({ 10, 5, 8, 4 }).oriented(CGImagePropertyOrientation::Right);
    EXPECT_EQ(turned.extent(), QRectF(10, 5, 4, 8));
    EXPECT_EQ(pictures::render(turned), UIImage(bitmap.copy(10, 13, 8, 4), 1.0, UIImageOrientation::Right).toQImage());
}

TEST(CIContext, RendersRectanglesAcrossTheEdge)
{
    const QImage bitmap = pictures::photo(10, 8, QImage::Format_ARGB32_Premultiplied);
    for (const CIImage& image : { CIImage(bitmap), worked(CIImage(bitmap)) }) {
        const auto rendered = CIContext::shared().createCGImage(image, QRectF(-2, -3, 14, 13));
        ASSERT_TRUE(rendered);
        EXPECT_EQ(rendered->format(), QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(rendered->copy(2, 2, 10, 8), bitmap);
        EXPECT_EQ(rendered->pixel(1, 5), 0U);
        EXPECT_EQ(rendered->pixel(12, 5), 0U);
        EXPECT_EQ(rendered->pixel(5, 1), 0U);
        EXPECT_EQ(rendered->pixel(5, 10), 0U);
    }
    for (const QRectF& rect : { QRectF(), QRectF(0, 0, 1e9, 4), QRectF(0, 0, 40000, 4), QRectF(0, 0, 30000, 30000),
             QRectF(0, 0, std::nan(""), 4) })
        EXPECT_FALSE(CIContext::shared().createCGImage(CIImage(bitmap), rect));
}

TEST(CIContext, RendersRgbaIntoMemoryWithAStride)
{
    QImage bitmap(2, 2, QImage::Format_RGB32);
    for (int i = 0; i < 4; ++i)
        bitmap.setPixel(i % 2, i / 2, qRgb(10 + i, 20 + i, 30 + i));
    std::vector<std::uint8_t> bytes(24, 7);
    CIContext().renderRGBA8(CIImage(bitmap), bytes.data(), 12, QRect(0, 0, 2, 2));
    const std::vector<std::uint8_t> expected { 10, 20, 30, 255, 11, 21, 31, 255, 7, 7, 7, 7, //
        12, 22, 32, 255, 13, 23, 33, 255, 7, 7, 7, 7 };
    EXPECT_EQ(bytes, expected);
}

} // namespace
} // namespace kelvara
