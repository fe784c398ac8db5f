#include "Platform/Vision/TextLineDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Evaluate/RectangleScenes.h"
#include "Tools/Evaluate/TextScenes.h"

#include <gtest/gtest.h>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint32_t kShare = 8;
#else
constexpr std::uint32_t kShare = 1;
#endif

std::vector<VNTextObservation> linesIn(const QImage& image)
{
    return TextLineDetector().detect(VisionImage(image));
}

QImage sceneOf(const specimen::SceneOptions& options)
{
    return photograph(specimen::SpecimenData::fromSeed(options.seed), options).image;
}

TEST(TextLineGate, FindsTheZoneOfACardHeldNear)
{
    for (const QSize size : { QSize(1000, 700), QSize(798, 562), QSize(501, 353) }) {
        const std::uint32_t count = 24 / kShare;
        std::uint32_t whole = 0;
        for (std::uint32_t seed = gateSeeds; seed < gateSeeds + count; ++seed) {
            const specimen::Scene scene = photograph(specimen::SpecimenData::fromSeed(seed), nearBack(seed, size));
            const QRectF zone = zoneIn(scene);
            const QRectF band = wideBand(linesIn(scene.image), size);
            const QRectF common = band & zone;
            const auto area = [](const QRectF& rect) { return rect.width() * rect.height(); };
            if (area(common) > 0.97 * area(zone) && area(band) < 1.3 * area(zone))
                ++whole;
            else
                std::cout << "seed " << seed << " at " << size.width() << ": "
                          << (band.isNull() ? "no band\n" : "another band\n");
        }
        EXPECT_GE(whole + 1, count) << size.width() << " px wide";
    }
}

TEST(TextLineGate, FindsNothingWideElsewhere)
{
    // Every find costs a reading: on fronts, tables, hands and pages of print there is nothing to read.
    std::uint32_t wide = 0;
    for (std::uint32_t i = 0; i < 12 / kShare + 1; ++i) {
        const std::uint32_t seed = gateSeeds + i;
        const QSize size(1000, 700);
        specimen::SceneOptions front = nearBack(seed, size);
        front.subject = specimen::Subject::Front;
        std::vector<specimen::SceneOptions> scenes { front };
        for (const RectangleSceneClass& kind : rectangleScenes) {
            if (kind.isEmpty)
                scenes.push_back(rectangleSceneOptions(kind.scene, seed, size));
        }
        for (const specimen::SceneOptions& options : scenes)
            wide += !wideBand(linesIn(sceneOf(options)), size).isNull();
    }
    EXPECT_EQ(wide, 0U);
}

TEST(TextLineDetector, LeavesLinesOfADistantCardBelowTheWidthThatCounts)
{
    specimen::SceneOptions options = nearBack(gateSeeds);
    options.fill = 0.85;
    const auto lines = linesIn(sceneOf(options));
    ASSERT_EQ(lines.size(), 3U);
    for (const VNTextObservation& line : lines) {
        EXPECT_GT(line.boundingBox.width(), 0.7);
        EXPECT_LT(line.boundingBox.width(), 0.8);
    }
    EXPECT_GT(lines[0].boundingBox.y(), lines[2].boundingBox.y()) << "from top to bottom, origin at the lower left";
    EXPECT_DOUBLE_EQ(lines[0].topLeft.y(), lines[0].boundingBox.bottom());
}

TEST(TextLineDetector, TakesImagesOfAnySize)
{
    for (const QSize size : { QSize(1, 1), QSize(1, 700), QSize(1000, 1), QSize(199, 140), QSize(200, 2), QSize(721, 3),
             QSize(9000, 40) }) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, (x / 3 + y / 5) % 2 ? 0xff000000U : 0xffffffffU);
        }
        for (const VNTextObservation& line : linesIn(image))
            EXPECT_TRUE(QRectF(0, 0, 1, 1).contains(line.boundingBox)) << size.width() << " x " << size.height();
    }
}

} // namespace
