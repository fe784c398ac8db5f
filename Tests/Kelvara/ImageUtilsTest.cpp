#include "Kelvara/ImageUtils.h"
#include "Kelvara/CIImageLuminance.h"
#include "Tests/Imaging/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kelvara {
namespace {

QImage filled(const QSize& size, const QColor& color, QImage::Format format = QImage::Format_ARGB32_Premultiplied)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

/// Left half of the one colour, right half of the other.
QImage halves(const QSize& size, const QColor& left, const QColor& right)
{
    QImage image = filled(size, left);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = size.width() / 2; x < size.width(); ++x)
            image.setPixelColor(x, y, right);
    }
    return image;
}

TEST(AverageLuminance, WeighsTheMeanOfTheLight)
{
    struct Row
    {
        const char* name;
        QImage image;
        double luminance;
    };
    const QSize size(31, 18);
    const Row rows[] = {
        { "white", filled(size, Qt::white), 1.0 },
        { "grey", filled(size, QColor(128, 128, 128)), 128 / 255.0 },
        { "black", filled(size, Qt::black), 0.0 },
        { "clear", filled(size, Qt::transparent), 0.0 },
        { "red", filled(size, Qt::red), 0.213 },
        { "green", filled(size, Qt::green), 0.715 },
        { "blue", filled(size, Qt::blue), 0.072 },
        { "half black, half white", halves({ 30, 8 }, Qt::black, Qt::white), 188 / 255.0 },
        { "grey without colours", filled(size, QColor(128, 128, 128), QImage::Format_Grayscale8), 128 / 255.0 },
    };
    for (const Row& row : rows)
        EXPECT_NEAR(averageLuminance(CIImage(row.image)), row.luminance, 1e-12) << row.name;
    EXPECT_EQ(averageLuminance(CIImage(filled(size, Qt::white))), 1.0);
    const CIImage picture(halves({ 30, 8 }, Qt::black, Qt::white));
    EXPECT_NEAR(averageLuminance(picture.cropped({ 15, 0, 15, 8 })), 1.0, 1e-12) << "of what the crop left";
}

TEST(ImageUtils, PixelColoursAreCountedInTheStoredRows)
{
    QImage bitmap(3, 2, QImage::Format_ARGB32_Premultiplied);
    for (int i = 0; i < 6; ++i)
        bitmap.setPixelColor(i % 3, i / 3, QColor(10 + i, 20 + i, 30 + i));
    bitmap.setPixel(1, 1, qRgba(100, 50, 0, 100)); // full red, half green, not multiplied by alpha
    // RGB888 pads its rows, which are counted without padding.
    for (const auto format : { QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB888, QImage::Format_RGBA8888 }) {
        const UIImage image(bitmap.convertToFormat(format));
        EXPECT_EQ(ImageUtils::getPixelColor(image, { 2, 0 }), QColor(12, 22, 32)) << format;
        EXPECT_EQ(ImageUtils::getPixelColor(image, { 0, 1 }), QColor(13, 23, 33)) << format;
        EXPECT_EQ(ImageUtils::getPixelColor(image, { 3, 0 }), QColor(13, 23, 33)) << "beyond a row is in the next one";
    }
    EXPECT_EQ(ImageUtils::getPixelColor(bitmap, { 1, 1 }), QColor(255, 128, 0, 100));
    // Rows have the width in points, upright, whatever the bitmap's own is.
    EXPECT_EQ(ImageUtils::getPixelColor(UIImage(bitmap, 3.0), { 0, 2 }), QColor(12, 22, 32));
    EXPECT_EQ(ImageUtils::getPixelColor(UIImage(bitmap, 1.0, UIImageOrientation::Left), { 1, 1 }), QColor(13, 23, 33));
}

TEST(ImageUtils, TheMeanIsOfEveryComponent)
{
    const QColor colors[] = { { 0, 60, 255, 255 }, { 30, 0, 255, 51 }, { 60, 0, 255, 0 } };
    EXPECT_EQ(ImageUtils::averageColor(colors).rgba(), qRgba(30, 20, 255, 102));
}

TEST(ImageUtils, CropsWhereTheBoxLies)
{
    const QImage bitmap = pictures::photo(40, 20);
    struct Row
    {
        const char* name;
        UIImage image;
        QRectF box; ///< origin bottom-left
        QRect part; ///< origin top-left; empty: nothing
    };
    const Row rows[] = {
        { "all", bitmap, { 0, 0, 1, 1 }, { 0, 0, 40, 20 } },
        { "lower left", bitmap, { 0, 0, 0.25, 0.5 }, { 0, 10, 10, 10 } },
        { "upper right", bitmap, { 0.75, 0.75, 0.25, 0.25 }, { 30, 0, 10, 5 } },
        { "across the edge", bitmap, { -0.5, 0.5, 1, 1 }, { 0, 0, 20, 10 } },
        { "scale is not applied", UIImage(bitmap, 2.0), { 0, 0, 0.5, 0.5 }, { 0, 5, 10, 5 } },
        { "the bitmap is not turned", UIImage(bitmap, 1.0, UIImageOrientation::Down), { 0, 0, 0.25, 0.5 },
            { 0, 10, 10, 10 } },
        { "outside", bitmap, { 1, 0, 0.5, 1 }, {} },
        { "empty", bitmap, { 0.5, 0.5, 0, 0 }, {} },
        { "no number", bitmap, { std::nan(""), 0, 1, 1 }, {} },
    };
    for (const Row& row : rows) {
        VNRectangleObservation observation;
        observation.boundingBox = row.box;
        const auto cut = ImageUtils::crop(row.image, observation);
        ASSERT_EQ(cut.has_value(), !row.part.isEmpty()) << row.name;
        if (cut) {
            EXPECT_EQ(cut->toQImage(), bitmap.copy(row.part)) << row.name;
        }
    }
}

TEST(ImageUtils, FixesEveryOrientation)
{
    const QImage bitmap = pictures::photo(30, 20);
    for (int raw = 0; raw < 8; ++raw) {
        const UIImage turned(bitmap, 2.0, UIImageOrientation(raw));
        const UIImage fixed = ImageUtils::fixOrientation(turned);
        EXPECT_EQ(fixed.imageOrientation(), UIImageOrientation::Up);
        EXPECT_EQ(fixed.size(), turned.size()) << raw;
        EXPECT_EQ(*fixed.cgImage(), turned.toQImage()) << raw;
    }
    EXPECT_TRUE(ImageUtils::fixOrientation(UIImage({}, 1.0, UIImageOrientation::Left)).isNull());
}

TEST(ImageUtils, ResizesTheUprightImageToPixels)
{
    const QImage left = halves({ 40, 20 }, Qt::red, Qt::blue);
    const UIImage upright = ImageUtils::resize(UIImage(left, 2.0), { 10.2, 8 });
    EXPECT_EQ(upright.size(), QSizeF(11, 8)) << "whole pixels, at scale 1";
    EXPECT_EQ(upright.toQImage().pixelColor(2, 3), QColor(Qt::red));
    EXPECT_EQ(upright.toQImage().pixelColor(8, 3), QColor(Qt::blue));
    // Turned to the right, what was left is on top.
    const QImage turned = ImageUtils::resize(UIImage(left, 1.0, UIImageOrientation::Right), { 10, 8 });
    EXPECT_EQ(turned.size(), QSize(10, 8));
    EXPECT_EQ(turned.pixelColor(5, 1), QColor(Qt::red));
    EXPECT_EQ(turned.pixelColor(5, 6), QColor(Qt::blue));
}

TEST(ImageUtils, GreyOfTheStoredBitmap)
{
    const std::pair<QColor, int> rows[]
        = { { Qt::white, 255 }, { Qt::black, 0 }, { { 77, 77, 77 }, 77 }, { { 255, 255, 255, 51 }, 51 } };
    for (const auto& [color, level] : rows) {
        const QImage grey = ImageUtils::convertToGrayscale(filled({ 5, 3 }, color));
        EXPECT_EQ(grey.format(), QImage::Format_Grayscale8);
        EXPECT_EQ(grey, filled({ 5, 3 }, QColor(level, level, level), QImage::Format_Grayscale8)) << level;
    }
    const QImage picture = halves({ 40, 20 }, Qt::red, Qt::green);
    const QImage small = ImageUtils::convertToGrayscale(UIImage(picture, 2.0));
    EXPECT_EQ(small.size(), QSize(20, 10)) << "as many pixels as points";
    EXPECT_GT(small.pixelColor(15, 5).red(), small.pixelColor(5, 5).red()) << "green is brighter than red";
}

TEST(ImageUtils, AdjustingTakesColoursAwayAndSpreadsLevels)
{
    const QImage adjusted = ImageUtils::adjustColors(pictures::photo(40, 30));
    EXPECT_TRUE(adjusted.allGray());
    // Half of the light is the middle that stays (188); darker gets darker, lighter gets lighter.
    for (const auto& [before, after] : { std::pair { 188, 188 }, { 128, 84 }, { 240, 255 }, { 20, 0 } })
        EXPECT_NEAR(ImageUtils::adjustColors(filled({ 3, 3 }, QColor(before, before, before)))
                        .toQImage()
                        .pixelColor(1, 1)
                        .red(),
            after, 1);
    EXPECT_TRUE(ImageUtils::adjustColors(UIImage()).isNull());
}

TEST(ImageUtils, ATransparentImageLiesOnItsColour)
{
    const QColor ground(0, 0, 200);
    const QImage picture = halves({ 8, 4 }, Qt::transparent, QColor(255, 0, 0, 51));
    const UIImage covered = ImageUtils::convertTransparent(UIImage(picture, 2.0), ground);
    EXPECT_EQ(covered.size(), QSizeF(4, 2));
    EXPECT_EQ(covered.scale(), 2.0);
    EXPECT_EQ(covered.toQImage().pixelColor(1, 1), ground);
    const QColor mixed = covered.toQImage().pixelColor(6, 1);
    EXPECT_NEAR(mixed.red(), 51, 1);
    EXPECT_NEAR(mixed.blue(), 160, 1);
}

/// White with four corner pixels of which one is black.
QImage cornered()
{
    QImage image = filled({ 40, 30 }, Qt::white);
    image.setPixelColor(0, 29, Qt::black);
    return image;
}

TEST(ImageUtils, InsetsHaveTheCornersMeanColour)
{
    const QImage framed = ImageUtils::insertInsets(cornered(), 10, 5);
    ASSERT_EQ(framed.size(), QSize(60, 40));
    for (const QPoint& margin : { QPoint(0, 0), QPoint(9, 20), QPoint(50, 20), QPoint(30, 4), QPoint(30, 35) })
        EXPECT_NEAR(framed.pixelColor(margin).red(), 191, 1) << margin.x() << ' ' << margin.y();
    EXPECT_EQ(framed.copy(10, 5, 40, 30), cornered());
    EXPECT_EQ(ImageUtils::insertInsets(cornered(), -10, -5).toQImage(), cornered().copy(10, 5, 20, 20));
}

TEST(ImageUtils, PreProcessingGivesASmallGreyImageOfTwiceTheHeight)
{
    QImage wide = filled({ 120, 30 }, Qt::white);
    QImage narrow = filled({ 40, 30 }, Qt::white);
    for (QImage* image : { &wide, &narrow }) {
        for (const int x : { 0, image->width() - 1 }) {
            image->setPixelColor(x, 0, Qt::black);
            image->setPixelColor(x, 29, Qt::black);
        }
    }
    for (const QImage& image : { wide, narrow }) {
        const QImage small = ImageUtils::preProcess(image);
        ASSERT_EQ(small.size(), QSize(28, 28));
        EXPECT_EQ(small.format(), QImage::Format_Grayscale8);
        EXPECT_EQ(small.pixelColor(14, 14), QColor(Qt::white));
        for (const int y : { 1, 5, 22, 26 })
            EXPECT_EQ(small.pixelColor(14, y), QColor(Qt::black)) << "above and below: half its height";
        EXPECT_EQ(small.pixelColor(2, 14), QColor(image.width() > 60 ? Qt::white : Qt::black));
    }
}

TEST(ImageUtils, PreProcessingGivesNothingForWhatIsTooLarge)
{
    for (const QSize size : { QSize(40000, 3), QSize(3, 16384), QSize(3, 40000) }) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        EXPECT_TRUE(ImageUtils::preProcess(image).isNull()) << size.width();
    }
}

TEST(ImageUtilsDeathTest, WhatCannotBeIsFatal)
{
    const UIImage image(pictures::photo(4, 2));
    EXPECT_DEATH((void)ImageUtils::convertToGrayscale(UIImage()), "has no bitmap content");
    EXPECT_DEATH((void)ImageUtils::getPixelColor(image, { 0, 2 }), "outside the image");
    EXPECT_DEATH((void)ImageUtils::getPixelColor(image, { -1, 0 }), "outside the image");
    EXPECT_DEATH((void)ImageUtils::convertToGrayscale(UIImage(pictures::photo(4, 2), 5.0)), "less than one point");
    EXPECT_DEATH((void)ImageUtils::resize(image, { 0, 5 }), "at least one pixel");
    EXPECT_DEATH((void)ImageUtils::averageColor({}), "no colours");
    EXPECT_DEATH((void)averageLuminance(CIImage(QImage())), "average of an image");
}

} // namespace
} // namespace kelvara
