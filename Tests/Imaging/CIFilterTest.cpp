#include "Platform/Imaging/CIFilter.h"
#include "Platform/Imaging/CIContext.h"
#include "Tests/Imaging/Pictures.h"

#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace kelvara {
namespace {

const QString kAverage = QStringLiteral("CIAreaAverage");
const QString kControls = QStringLiteral("CIColorControls");

QRgb averageOf(const CIImage& image, const QVariantMap& parameters = {})
{
    const auto average = image.applyingFilter(kAverage, parameters);
    EXPECT_TRUE(average && average->extent() == QRectF(0, 0, 1, 1));
    return average ? CIContext::shared().createCGImage(*average, average->extent())->pixel(0, 0) : 0;
}

QImage uniform(QRgb color, int width = 4, int height = 4)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

TEST(AreaAverage, OfAUniformImageIsItsColour)
{
    for (int grey = 0; grey < 256; ++grey)
        EXPECT_EQ(averageOf(CIImage(uniform(qRgb(grey, 255 - grey, 7), 13, 9))), qRgb(grey, 255 - grey, 7));
}

TEST(AreaAverage, IsTakenInLinearLight)
{
    QImage halves = uniform(qRgb(0, 0, 0), 64, 64);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            halves.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    }
    EXPECT_EQ(averageOf(CIImage(halves)), qRgb(188, 188, 188)); // half the light, not half the byte
}

TEST(AreaAverage, TakesItsExtentAndCountsEmptyPlacesAsTransparent)
{
    QImage image = uniform(qRgb(255, 255, 255), 8, 4);
    for (int x = 0; x < 8; ++x)
        image.setPixel(x, 3, qRgb(255, 0, 0)); // the lowest row
    const auto extent = [](const QRectF& rect) { return QVariantMap { { kCIInputExtentKey, rect } }; };
    EXPECT_EQ(averageOf(CIImage(image), extent({ 0, 0, 8, 1 })), qRgb(255, 0, 0));
    EXPECT_EQ(averageOf(CIImage(image), extent({ 2, 1, 3, 3 })), qRgb(255, 255, 255));
    EXPECT_EQ(qAlpha(averageOf(CIImage(image), extent({ -8, 0, 16, 4 }))), 128);
    EXPECT_EQ(averageOf(CIImage(image), extent({ 100, 100, 4, 4 })), 0U);
    for (const QRectF& rect : { QRectF(), QRectF(0, 0, std::nan(""), 1), QRectF(0, 0, HUGE_VAL, HUGE_VAL) })
        EXPECT_FALSE(CIImage(image).applyingFilter(kAverage, extent(rect)));
    EXPECT_FALSE(CIImage(QImage()).applyingFilter(kAverage));
}

TEST(ColorControls, WorkOnLinearLight)
{
    struct Row
    {
        QVariantMap parameters;
        QRgb in;
        QRgb out;
    };
    const auto of = [](const char* key, double value) { return QVariantMap { { QLatin1String(key), value } }; };
    // Worked by hand: 188 is 0.5 of white's light, 128 is 0.2159, 64 is 0.0513.
    const Row rows[] = {
        { {}, qRgb(12, 200, 99), qRgb(12, 200, 99) },
        { { { QStringLiteral("inputContrast"), QStringLiteral("no number") } }, qRgb(1, 2, 3), qRgb(1, 2, 3) },
        { of(kCIInputSaturationKey, 0), qRgb(255, 0, 0), qRgb(127, 127, 127) }, // luma 0.2126
        { of(kCIInputSaturationKey, 0), qRgb(0, 255, 0), qRgb(220, 220, 220) }, // 0.7152
        { of(kCIInputSaturationKey, 0), qRgb(0, 0, 255), qRgb(76, 76, 76) }, // 0.0722
        { of(kCIInputSaturationKey, 0), qRgb(77, 77, 77), qRgb(77, 77, 77) },
        { of(kCIInputContrastKey, 1.45), qRgb(188, 188, 188), qRgb(188, 188, 188) },
        { of(kCIInputContrastKey, 1.45), qRgb(128, 64, 255), qRgb(84, 0, 255) }, // 0.0881, −0.15
        { of(kCIInputContrastKey, 0), qRgb(3, 128, 255), qRgb(188, 188, 188) },
        { of(kCIInputBrightnessKey, 0.5), qRgb(0, 0, 255), qRgb(188, 188, 255) },
        { of(kCIInputBrightnessKey, -1), qRgb(0, 128, 255), qRgb(0, 0, 0) },
    };
    for (const Row& row : rows) {
        const auto output = CIImage(uniform(row.in)).applyingFilter(kControls, row.parameters);
        ASSERT_TRUE(output);
        EXPECT_LE(pictures::largestDifference(
                      *CIContext::shared().createCGImage(*output, output->extent()), uniform(row.out)),
            1)
            << std::hex << row.in;
    }
    // Where nothing is, brightness brings nothing.
    const auto clear = CIImage(uniform(0)).applyingFilter(kControls, of(kCIInputBrightnessKey, 0.5));
    EXPECT_EQ(CIContext::shared().createCGImage(*clear, clear->extent())->pixel(0, 0), 0U);
}

/// Gives back its input, remembering the values it was given.
class Recording final : public CIFilter
{
public:
    void setValue(const QVariant& value, const QString& key) override { values.insert(key, value); }
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        return values.contains(QStringLiteral("fail")) ? std::nullopt : inputImage;
    }

    QVariantMap values;
};

TEST(FilterRegistry, KnowsBuiltInAndRegisteredNamesOnly)
{
    for (const QString& name : { kAverage, kControls, QStringLiteral("CIPerspectiveCorrection") }) {
        const auto filter = CIFilter::filter(name);
        ASSERT_TRUE(filter);
        EXPECT_FALSE(filter->outputImage()) << "without input";
        filter->setValue(1, QStringLiteral("unknown"));
    }
    for (const char* name : { "", "ciareaaverage", "CIAreaAverage ", "Recording" })
        EXPECT_FALSE(CIFilter::filter(QLatin1String(name)));
    EXPECT_FALSE(CIImage(uniform(0)).applyingFilter(QStringLiteral("Recording")));
    EXPECT_TRUE(CIFilter::classAttributes(QStringLiteral("Recording")).isEmpty());

    const QString name = QStringLiteral("TestRecording");
    const QVariantMap attributes { { QStringLiteral("categories"), QStringLiteral("Custom") } };
    CIFilter::registerFilterName(name, [](const QString&) { return std::unique_ptr<CIFilter>(); }, {});
    EXPECT_FALSE(CIFilter::filter(name, { { QStringLiteral("a"), 1 } })) << "a constructor may decline";
    CIFilter::registerFilterName(
        name,
        [](const QString& made) {
            return made == QStringLiteral("TestRecording") ? std::make_unique<Recording>() : nullptr;
        },
        attributes);
    EXPECT_EQ(CIFilter::classAttributes(name), attributes);
    const auto filter = CIFilter::filter(name, { { QStringLiteral("a"), 1 }, { QStringLiteral("b"), 2.5 } });
    ASSERT_TRUE(filter);
    EXPECT_EQ(static_cast<Recording&>(*filter).values.value(QStringLiteral("b")), 2.5);
    EXPECT_EQ(CIImage(uniform(0)).applyingFilter(name)->extent(), QRectF(0, 0, 4, 4));
    EXPECT_FALSE(CIImage(uniform(0)).applyingFilter(name, { { QStringLiteral("fail"), true } }));
}

TEST(FilterRegistry, ServesManyThreads)
{
    std::atomic<int> made = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 50; ++round) {
                const QString name = QStringLiteral("Thread%1").arg((thread + round) % 4);
                // A constructor that asks the registry itself must not find it locked.
                CIFilter::registerFilterName(
                    name, [](const QString&) { return CIFilter::filter(kControls); }, { { name, 1 } });
                made += CIFilter::filter(name) != nullptr;
                made += !CIFilter::classAttributes(name).isEmpty();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(made, 4 * 50 * 2);
}

TEST(CIContext, OneRecipeMayBeRenderedOnManyThreads)
{
    const CIImage image(pictures::photo(60, 40));
    const CIImage recipe = image.oriented(CGImagePropertyOrientation::Left)
                               .applyingFilter(kControls, { { kCIInputSaturationKey, 0.5 } })
                               .value();
    const auto expected = CIContext().createCGImage(recipe, recipe.extent());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&] { EXPECT_EQ(CIContext().createCGImage(recipe, recipe.extent()), expected); });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace kelvara
