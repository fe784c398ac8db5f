#include "Platform/Imaging/CIColorKernel.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIFilter.h"
#include "Tests/Imaging/Pictures.h"

#include <gtest/gtest.h>
#include <numbers>

namespace kelvara {
namespace {

std::optional<CIImage> scaled(const CIImage& image, double scale, double aspectRatio = 1)
{
    return image.applyingFilter(QStringLiteral("CILanczosScaleTransform"),
        { { QLatin1String(kCIInputScaleKey), scale }, { QLatin1String(kCIInputAspectRatioKey), aspectRatio } });
}

QImage rendered(const CIImage& image)
{
    return CIContext::shared().createCGImage(image, image.extent()).value_or(QImage());
}

TEST(Lanczos, ScalesTheExtent)
{
    const CIImage image(pictures::photo(31, 17));
    EXPECT_EQ(scaled(image, 2)->extent(), QRectF(0, 0, 62, 34));
    EXPECT_EQ(scaled(image, 0.5)->extent(), QRectF(0, 0, 16, 9));
    EXPECT_EQ(scaled(image, 2, 0.5)->extent(), QRectF(0, 0, 31, 34));
    EXPECT_EQ(scaled(image.cropped({ 3, 5, 10, 6 }), 2)->extent(), QRectF(6, 10, 20, 12));
    EXPECT_EQ(rendered(*scaled(image, 1)), rendered(image));
    for (const double wrong : { 0.0, -1.0, std::nan(""), HUGE_VAL, 1e9 })
        EXPECT_FALSE(scaled(image, wrong)) << wrong;
    EXPECT_FALSE(scaled(CIImage(QImage()), 2));
}

TEST(Lanczos, RefusesWhatIsEndless)
{
    const auto kernel = CIColorKernel::compile(QStringLiteral("kernel vec4 k() { return vec4(1); }"));
    ASSERT_TRUE(kernel);
    for (const QSizeF size : { QSizeF(1 << 28, 1 << 28), QSizeF(1 << 28, 4), QSizeF(4, 70000) }) {
        const auto endless = kernel->apply(QRectF(QPointF(), size), {});
        ASSERT_TRUE(endless);
        EXPECT_FALSE(scaled(*endless, 2)) << size.width();
        EXPECT_FALSE(CIContext::shared().createCGImage(*endless, endless->extent()));
    }
    const auto endless = kernel->apply(QRectF(0, 0, 1 << 28, 1 << 28), {});
    EXPECT_FALSE(scaled(*endless, 1.0 / 64));
    EXPECT_FALSE(endless->applyingFilter(QStringLiteral("CIAreaAverage"), {}));
}

// A straight sum over both directions at once, written from the definition.
TEST(Lanczos, IsTheThreeLobedKernelInLinearLight)
{
    const QImage source = pictures::photo(23, 19);
    const auto light = [&](int x, int y) {
        const double v = qGreen(source.pixel(qBound(0, x, 22), qBound(0, y, 18))) / 255.0;
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    const auto sinc = [](double t) { return t == 0 ? 1.0 : std::sin(std::numbers::pi * t) / (std::numbers::pi * t); };
    const auto weight = [&](double t) { return std::abs(t) < 3 ? sinc(t) * sinc(t / 3) : 0.0; };
    const QImage doubled = rendered(*scaled(CIImage(source), 2));
    for (int y = 0; y < doubled.height(); ++y) {
        for (int x = 0; x < doubled.width(); ++x) {
            const double u = (x + 0.5) / 2 - 0.5;
            const double v = (y + 0.5) / 2 - 0.5;
            double sum = 0;
            double total = 0;
            for (int j = int(v) - 5; j < int(v) + 6; ++j) {
                for (int i = int(u) - 5; i < int(u) + 6; ++i) {
                    sum += weight(u - i) * weight(v - j) * light(i, j);
                    total += weight(u - i) * weight(v - j);
                }
            }
            const double value = std::clamp(sum / total, 0.0, 1.0);
            const double encoded = value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
            ASSERT_NEAR(qGreen(doubled.pixel(x, y)), 255 * encoded, 0.75) << x << ' ' << y;
        }
    }
}

TEST(Lanczos, RendersPartsAndReductionsAlike)
{
    const CIImage image(pictures::photo(90, 70));
    for (const double scale : { 2.0, 0.3, 1.7 }) {
        const CIImage whole = *scaled(image, scale);
        const QRectF part(7, 5, 11, 9);
        const auto cut = CIContext::shared().createCGImage(whole, part);
        const int fromTop = int(whole.extent().height()) - 14;
        EXPECT_EQ(*cut, rendered(whole).copy(7, fromTop, 11, 9)) << scale;
        // Twice the rows asked for in an order that the ring does not like.
        const auto again = whole.cropped(part).oriented(CGImagePropertyOrientation::Down);
        EXPECT_EQ(rendered(again).mirrored(true, true), *cut) << scale;
    }
    QImage even(64, 64, QImage::Format_RGB32);
    even.fill(qRgb(10, 128, 250));
    EXPECT_EQ(rendered(*scaled(CIImage(even), 0.37)).pixel(5, 5), qRgb(10, 128, 250));
}

TEST(Exposure, MultipliesLightByPowersOfTwo)
{
    const auto exposed = [](QRgb pixel, const QVariant& stops) {
        QImage image(2, 2, QImage::Format_ARGB32_Premultiplied);
        image.fill(pixel);
        const auto result = CIImage(image).applyingFilter(
            QStringLiteral("CIExposureAdjust"), { { QLatin1String(kCIInputEVKey), stops } });
        return result ? rendered(*result).pixel(1, 1) : 0U;
    };
    EXPECT_EQ(exposed(qRgb(188, 10, 255), -1), qRgb(137, 5, 188));
    EXPECT_EQ(exposed(qRgb(188, 137, 0), 1), qRgb(255, 188, 0));
    EXPECT_EQ(exposed(qRgb(188, 137, 0), QVariant()), qRgb(188, 137, 0));
    EXPECT_EQ(qAlpha(exposed(qRgba(50, 50, 50, 100), 1)), 100);
    EXPECT_EQ(exposed(qRgb(1, 1, 1), std::nan("")), 0U);
}

} // namespace
} // namespace kelvara
