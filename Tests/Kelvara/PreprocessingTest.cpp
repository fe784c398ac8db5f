#include "Kelvara/FilterVendor.h"
#include "Kelvara/LuminanceThresholdFilter.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Platform/Imaging/CIContext.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

QImage uniform(QRgb color, QImage::Format format = QImage::Format_RGB32, QSize size = { 40, 12 })
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

QRgb thresholded(QRgb pixel, double threshold)
{
    LuminanceThresholdFilter filter;
    filter.setValue(QVariant::fromValue(CIImage(uniform(pixel, QImage::Format_ARGB32_Premultiplied))),
        QLatin1String(kCIInputImageKey));
    filter.setValue(threshold, QStringLiteral("inputThreshold"));
    return CIContext::shared().createCGImage(*filter.outputImage(), QRectF(0, 0, 1, 1))->pixel(0, 0);
}

constexpr QRgb kBlack = 0xFF000000U;
constexpr QRgb kWhite = 0xFFFFFFFFU;

TEST(MrzExposureOf, FollowsTheLuminance)
{
    struct Row
    {
        double luminance;
        double threshold;
        double stops;
    };
    const Row rows[] = { { 0.5, 0.129449, 0.5 }, { 0.9, 0.369043, -0.3 }, { 0.2, 0.043648, 1.731144 },
        { 1.0, 1.0, -0.5 }, { 0.0, 0.0, 1.914214 }, { 0.8, 0.275220, 0.5 }, { 0.35, 0.082549, 0.5 },
        { 0.8001, 0.275293, -0.1002 }, { 0.3499, 0.082525, 1.609651 } };
    for (const Row& row : rows) {
        const MrzExposure exposure = MrzExposure::of(row.luminance);
        EXPECT_NEAR(exposure.threshold, row.threshold, 1e-5) << row.luminance;
        EXPECT_NEAR(exposure.stops, row.stops, 1e-5) << row.luminance;
    }
}

TEST(LuminanceThreshold, SplitsByLumaInLinearLight)
{
    EXPECT_EQ(thresholded(qRgb(255, 255, 255), 1.0), kBlack); // equal is black
    EXPECT_EQ(thresholded(qRgb(0, 0, 0), 0.0), kBlack);
    EXPECT_EQ(thresholded(qRgb(1, 0, 0), 0.0), kWhite);
    EXPECT_EQ(thresholded(qRgb(188, 188, 188), 0.49), kWhite); // half of white's light
    EXPECT_EQ(thresholded(qRgb(188, 188, 188), 0.51), kBlack);
    const QRgb primaries[] = { qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255) };
    const double weights[] = { 0.2126, 0.7152, 0.0722 };
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(thresholded(primaries[i], weights[i] - 1e-4), kWhite);
        EXPECT_EQ(thresholded(primaries[i], weights[i] + 1e-4), kBlack);
    }
    EXPECT_EQ(thresholded(qRgba(0, 0, 0, 0), 0.5), kBlack); // opaque whatever the alpha was
    EXPECT_EQ(thresholded(qRgba(100, 100, 100, 100), 0.1), kWhite);
}

TEST(LuminanceThreshold, StartsWithHalfAndNoImage)
{
    LuminanceThresholdFilter filter;
    EXPECT_EQ(filter.inputThreshold, 0.5);
    EXPECT_FALSE(filter.outputImage());
    filter.setValue(QStringLiteral("much"), QStringLiteral("inputThreshold"));
    filter.setValue(0.25, QStringLiteral("inputthreshold"));
    EXPECT_EQ(filter.inputThreshold, 0.5);
    filter.setInputImage(CIImage(uniform(qRgb(9, 9, 9), QImage::Format_ARGB32_Premultiplied)));
    filter.setValue(QStringLiteral("a picture"), QLatin1String(kCIInputImageKey));
    EXPECT_FALSE(filter.outputImage());
}

TEST(FilterVendor, MakesItsFilterKnownByName)
{
    FilterVendor::registerFilters();
    FilterVendor::registerFilters();
    const QString name = QStringLiteral("LuminanceThresholdFilter");
    EXPECT_EQ(CIFilter::classAttributes(name),
        (QVariantMap { { QLatin1String(kCIAttributeFilterCategories), QStringLiteral("CustomFilters") } }));
    EXPECT_TRUE(dynamic_cast<LuminanceThresholdFilter*>(CIFilter::filter(name).get()));
    EXPECT_TRUE(FilterVendor().filter(name));
    EXPECT_FALSE(FilterVendor().filter(QStringLiteral("luminanceThresholdFilter")));
    EXPECT_NE(FilterVendor().filter(name), FilterVendor().filter(name));
}

TEST(FilterVendor, DescribesTheFilter)
{
    struct Derived final : LuminanceThresholdFilter
    { };
    EXPECT_EQ(Derived().attributes().value(QLatin1String(kCIAttributeFilterDisplayName)), QStringLiteral("Derived"));
    const QVariantMap attributes = LuminanceThresholdFilter().attributes();
    const QVariantMap image { { "CIAttributeIdentity", 0 }, { "CIAttributeClass", "CIImage" },
        { "CIAttributeDisplayName", "Image" }, { "CIAttributeType", "CIAttributeTypeImage" } };
    const QVariantMap threshold { { "CIAttributeIdentity", 0 }, { "CIAttributeClass", "NSNumber" },
        { "CIAttributeDefault", 0.5 }, { "CIAttributeDisplayName", "Threshold" }, { "CIAttributeMin", 0 },
        { "CIAttributeSliderMin", 0 }, { "CIAttributeSliderMax", 1 }, { "CIAttributeType", "CIAttributeTypeScalar" } };
    EXPECT_EQ(attributes,
        (QVariantMap { { "CIAttributeFilterDisplayName", "LuminanceThresholdFilter" }, { "inputImage", image },
            { "inputThreshold", threshold } }));
}

TEST(PreprocessImage, MakesUniformBandsAllOfOneColour)
{
    FilterVendor::registerFilters();
    struct Row
    {
        QRgb in;
        QRgb out;
    };
    // White's threshold is 1, above what is left of its light; for black nothing is above 0.
    for (const Row& row : { Row { qRgb(255, 255, 255), kBlack }, Row { qRgb(0, 0, 0), kBlack },
             Row { qRgb(1, 1, 1), kWhite }, Row { qRgb(128, 128, 128), kWhite } }) {
        const auto result = preprocessImage(uniform(row.in));
        ASSERT_TRUE(result);
        QImage expected = uniform(row.out, QImage::Format_ARGB32_Premultiplied, { 80, 24 });
        EXPECT_EQ(*result, expected) << qRed(row.in);
    }
}

TEST(PreprocessImage, SetsBlackLettersOnWhiteAtTwiceTheSize)
{
    FilterVendor::registerFilters();
    for (const int paper : { 90, 150, 200, 235 }) {
        for (const auto format : { QImage::Format_RGB32, QImage::Format_Grayscale8, QImage::Format_ARGB32 }) {
            QImage band = uniform(qRgb(paper, paper, paper), format, { 120, 30 });
            for (int y = 8; y < 22; ++y) {
                for (int x = 30; x < 36; ++x)
                    band.setPixelColor(x, y, QColor(paper / 6, paper / 6, paper / 6));
            }
            const auto result = preprocessImage(band);
            ASSERT_TRUE(result);
            ASSERT_EQ(result->size(), QSize(240, 60));
            int black = 0;
            for (int y = 0; y < 60; ++y) {
                for (int x = 0; x < 240; ++x) {
                    const QRgb pixel = result->pixel(x, y);
                    ASSERT_TRUE(pixel == kBlack || pixel == kWhite);
                    black += pixel == kBlack ? 1 : 0;
                    ASSERT_FALSE(pixel == kBlack && !QRect(59, 15, 14, 30).contains(x, y)) << x << ' ' << y;
                }
            }
            EXPECT_GE(black, 10 * 26) << paper;
        }
    }
}

TEST(PreprocessImage, YieldsNothingForNothing)
{
    FilterVendor::registerFilters();
    EXPECT_FALSE(preprocessImage(QImage()));
    EXPECT_EQ(preprocessImage(uniform(kWhite, QImage::Format_RGB32, { 1, 1 }))->size(), QSize(2, 2));
    for (const QSize size : { QSize(16384, 2), QSize(2, 16384), QSize(40000, 2), QSize(100000, 1), QSize(9000, 9000) })
        EXPECT_FALSE(preprocessImage(uniform(kWhite, QImage::Format_RGB32, size))) << size.width();
    EXPECT_EQ(preprocessImage(uniform(kWhite, QImage::Format_RGB32, { 16383, 2 }))->size(), QSize(32766, 4));
}

} // namespace
} // namespace kelvara
