#include "Platform/Imaging/UIImage.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

struct OrientationRow
{
    UIImageOrientation orientation;
    int raw;
    CGImagePropertyOrientation property;
    const char* upright; ///< Of the bitmap "ABC/DEF", row by row.
};

// What the eight orientations mean is fixed by Exif: where the stored row 0 and column 0 lie in the upright picture.
const OrientationRow kRows[] = {
    { UIImageOrientation::Up, 0, CGImagePropertyOrientation::Up, "ABC/DEF" },
    { UIImageOrientation::Down, 1, CGImagePropertyOrientation::Down, "FED/CBA" },
    { UIImageOrientation::Left, 2, CGImagePropertyOrientation::Left, "CF/BE/AD" },
    { UIImageOrientation::Right, 3, CGImagePropertyOrientation::Right, "DA/EB/FC" },
    { UIImageOrientation::UpMirrored, 4, CGImagePropertyOrientation::UpMirrored, "CBA/FED" },
    { UIImageOrientation::DownMirrored, 5, CGImagePropertyOrientation::DownMirrored, "DEF/ABC" },
    { UIImageOrientation::LeftMirrored, 6, CGImagePropertyOrientation::LeftMirrored, "AD/BE/CF" },
    { UIImageOrientation::RightMirrored, 7, CGImagePropertyOrientation::RightMirrored, "FC/EB/DA" },
};

QImage letters(QImage::Format format)
{
    QImage image(3, 2, QImage::Format_RGB32);
    for (int i = 0; i < 6; ++i)
        image.setPixel(i % 3, i / 3, qRgb('A' + i, 'A' + i, 'A' + i));
    return image.convertToFormat(format);
}

std::string read(const QImage& image)
{
    std::string text;
    for (int y = 0; y < image.height(); ++y) {
        text += y == 0 ? "" : "/";
        for (int x = 0; x < image.width(); ++x)
            text += char(qRed(image.pixel(x, y)));
    }
    return text;
}

TEST(UIImage, OrientationsTurnTheBitmapUpright)
{
    for (const OrientationRow& row : kRows) {
        EXPECT_EQ(int(row.orientation), row.raw);
        EXPECT_EQ(imagePropertyOrientation(row.orientation), row.property);
        EXPECT_EQ(imageOrientation(row.property), row.orientation);
        for (const auto format : { QImage::Format_RGB32, QImage::Format_Grayscale8, QImage::Format_RGB888 }) {
            const UIImage image(letters(format), 2.0, row.orientation);
            EXPECT_EQ(read(image.toQImage()), row.upright) << row.raw;
            EXPECT_EQ(image.size(), QSizeF(image.toQImage().size()) / 2.0) << row.raw;
            EXPECT_EQ(read(*image.cgImage()), "ABC/DEF");
        }
    }
}

TEST(UIImage, AnUprightImageSharesItsPixels)
{
    const QImage bitmap = letters(QImage::Format_RGB32);
    const UIImage image(bitmap);
    EXPECT_EQ(image.toQImage().constBits(), bitmap.constBits());
    EXPECT_EQ(QImage(image).constBits(), bitmap.constBits());
}

TEST(UIImage, WithoutBitmapEverythingIsAbsent)
{
    for (const UIImage& image : { UIImage(), UIImage(QImage(), 2.0, UIImageOrientation::Left) }) {
        EXPECT_TRUE(image.isNull());
        EXPECT_FALSE(image.cgImage());
        EXPECT_TRUE(image.toQImage().isNull());
        EXPECT_EQ(image.size(), QSizeF(0, 0));
        EXPECT_FALSE(UIImagePNGRepresentation(image));
        EXPECT_FALSE(UIImageJPEGRepresentation(image, 0.5));
    }
}

TEST(UIImage, TheScaleIsNeverUseless)
{
    for (const double scale : { 0.0, -2.0, std::nan(""), HUGE_VAL })
        EXPECT_EQ(UIImage(letters(QImage::Format_RGB32), scale).scale(), 1.0);
}

TEST(UIImageDeathTest, UnknownOrientationsAreFatal)
{
    EXPECT_DEATH((void)imagePropertyOrientation(UIImageOrientation(8)), "Fatal error");
    EXPECT_DEATH((void)imageOrientation(CGImagePropertyOrientation(0)), "Fatal error");
}

TEST(JpegRepresentation, QualityGoesFromZeroToOne)
{
    QImage bitmap(64, 48, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x)
            bitmap.setPixel(x, y, qRgb(x * 4, y * 5, (x ^ y) * 4));
    }
    qsizetype before = 0;
    for (const double quality : { 0.0, 0.5, 1.0 }) {
        const auto jpeg = UIImageJPEGRepresentation(UIImage(bitmap), quality);
        ASSERT_TRUE(jpeg);
        EXPECT_TRUE(jpeg->startsWith("\xFF\xD8\xFF"));
        EXPECT_EQ(QImage::fromData(*jpeg).size(), bitmap.size());
        EXPECT_GT(jpeg->size(), before);
        before = jpeg->size();
    }
    EXPECT_EQ(UIImageJPEGRepresentation(UIImage(bitmap), 7.0), UIImageJPEGRepresentation(UIImage(bitmap), 1.0));
    EXPECT_EQ(UIImageJPEGRepresentation(UIImage(bitmap), -1.0), UIImageJPEGRepresentation(UIImage(bitmap), 0.0));
    EXPECT_TRUE(UIImageJPEGRepresentation(UIImage(bitmap), std::nan("")));
    const auto turned = UIImageJPEGRepresentation(UIImage(bitmap, 1.0, UIImageOrientation::Right), 0.5);
    EXPECT_EQ(QImage::fromData(*turned).size(), QSize(48, 64));
}

} // namespace
} // namespace kelvara
