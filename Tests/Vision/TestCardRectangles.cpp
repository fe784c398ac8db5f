#include "Platform/Vision/CardRectangleDetector.h"
#include "Tools/Evaluate/RectangleTally.h"

#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

constexpr int kThreads = 2;

std::vector<VNRectangleObservation> detect(const QImage& image, const RectangleLimits& limits = cardLimits)
{
    return CardRectangleDetector().detect(VisionImage(image), limits);
}

/// A light card on a dark ground, straight on, `width` by `height` in the middle.
QImage plainCard(QSize size, QSizeF card, double degrees = 0)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(52, 60, 66));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(size.width() / 2.0, size.height() / 2.0);
    painter.rotate(degrees);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(214, 222, 226));
    const double radius = std::max(card.width(), card.height()) * 0.037;
    painter.drawRoundedRect(QRectF(-card.width() / 2, -card.height() / 2, card.width(), card.height()), radius, radius);
    return image;
}

} // namespace

/// Scenes that the tuning never saw; the floors and ceilings are what the library promises.
class CardRectangleGate : public testing::Test
{
protected:
    /// `count` scenes of a class; a tenth of them under sanitizers, which is said.
    static RectangleTally tally(RectangleScene scene, int count, QSize size = { 1000, 700 })
    {
        if (kSanitized) {
            count = std::max(4, count / 10);
            std::printf("[  REDUCED ] %d scenes under a sanitizer\n", count);
        }
        static const CardRectangleDetector detector;
        return tallies({ &detector }, scene, gateSeeds, count, size, kThreads).front();
    }

    /// Fails where so few hits would come by chance in one sample of forty (two standard deviations) if the share
    /// were `least`: another processor rounds otherwise and so draws another sample, which says nothing of the search.
    static void expectShare(int hits, int scenes, double least)
    {
        const double chance = 2 * std::sqrt(scenes * least * (1 - least));
        EXPECT_GE(hits, static_cast<int>(std::floor(least * scenes - chance))) << "of " << scenes << " scenes";
    }
};

TEST_F(CardRectangleGate, FindsTheCard)
{
    const std::vector<RectangleScene> usual { RectangleScene::Plain, RectangleScene::Finger, RectangleScene::Glare };
    const struct
    {
        std::vector<RectangleScene> scenes;
        QSize size;
        int count; ///< Of each kind of scene.
        double within90;
        double within95;
    } rows[] = {
        { usual, { 1000, 700 }, 100, 0.98, 0.94 },
        { usual, { 798, 562 }, 34, 0.98, 0.94 },
        { { RectangleScene::LowContrast }, { 1000, 700 }, 80, 0.80, 0.75 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.scenes.size() << " kinds at " << row.size.width() << " px");
        RectangleTally found;
        for (const RectangleScene scene : row.scenes)
            found.add(tally(scene, row.count, row.size));
        expectShare(found.within90, found.scenes, row.within90);
        expectShare(found.within95, found.scenes, row.within95);
        EXPECT_EQ(found.beyondLimits, 0);
        EXPECT_LE(found.wrong(), std::max(1, found.scenes / 50));
    }
}

TEST_F(CardRectangleGate, SeesNoCardWhereThereIsNone)
{
    RectangleTally all;
    for (const RectangleSceneClass& kind : rectangleScenes) {
        if (kind.isEmpty)
            all.add(tally(kind.scene, 100));
    }
    // One false find stands for two seconds: two in a thousand frames at most.
    EXPECT_LE(all.reported, std::max(1, all.scenes / 500)) << "of " << all.scenes << " scenes";
}

TEST_F(CardRectangleGate, LeavesOutCardsBeyondTheLimits)
{
    for (const RectangleScene scene : { RectangleScene::BeyondLimits, RectangleScene::Small }) {
        const RectangleTally found = tally(scene, 50);
        EXPECT_LE(found.reported, found.scenes / 25) << "scene class " << static_cast<int>(scene);
    }
}

TEST(CardRectangles, MeasuresCornersToAFractionOfAPixel)
{
    const struct
    {
        QSize image;
        double width;
        double degrees;
    } rows[] = {
        { { 1000, 700 }, 600, 0 },
        { { 1000, 700 }, 990, 0 }, // 5 px from the border
        { { 1000, 700 }, 900, 4 },
        { { 798, 562 }, 640, -6 },
        { { 700, 1000 }, 600, 2 },
        { { 1920, 1080 }, 1400, -3 },
        { { 320, 224 }, 260, 5 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.image.width() << " px, card " << row.width);
        const QSizeF card(row.width, row.width / 1.55);
        const auto found = detect(plainCard(row.image, card, row.degrees));
        ASSERT_EQ(found.size(), 1U);
        const Outline outline = outlineOf(found.front(), row.image);
        QTransform turn;
        turn.translate(row.image.width() / 2.0, row.image.height() / 2.0).rotate(row.degrees);
        const QPolygonF truth = turn.map(QPolygonF(QRectF(QPointF(-card.width() / 2, -card.height() / 2), card)));
        for (std::size_t corner = 0; corner < 4; ++corner) {
            const QPointF at = truth[static_cast<qsizetype>(corner)];
            EXPECT_NEAR(static_cast<double>(outline[corner].x), at.x(), 0.5) << "corner " << corner;
            EXPECT_NEAR(static_cast<double>(outline[corner].y), at.y(), 0.5) << "corner " << corner;
        }
        const VNRectangleObservation& first = found.front();
        EXPECT_TRUE(first.boundingBox.contains((first.topLeft + first.bottomRight) / 2));
        EXPECT_GT(first.topLeft.y(), first.bottomLeft.y()) << "the origin is at the lower left";
        EXPECT_GT(first.confidence, 0.5F);
    }
}

TEST(CardRectangles, KeepsToTheLimits)
{
    const QSize size(1000, 700);
    const auto finds
        = [&](QSizeF card, const RectangleLimits& limits) { return !detect(plainCard(size, card), limits).empty(); };
    EXPECT_TRUE(finds({ 700, 440 }, cardLimits)) << "aspect 1.59";
    EXPECT_FALSE(finds({ 700, 420 }, cardLimits)) << "aspect 1.67";
    EXPECT_TRUE(finds({ 700, 530 }, cardLimits)) << "aspect 1.32";
    EXPECT_FALSE(finds({ 700, 560 }, cardLimits)) << "aspect 1.25";
    EXPECT_TRUE(finds({ 400, 620 }, cardLimits)) << "standing, aspect 1.55";
    EXPECT_TRUE(finds({ 570, 370 }, cardLimits)) << "short side over half of the image's";
    EXPECT_FALSE(finds({ 510, 330 }, cardLimits)) << "under half of it";
    EXPECT_FALSE(finds({ 700, 440 }, { 1.3F, 1.6F, 0.5F, 0 })) << "no observation wanted";
}

TEST(CardRectangles, NeverTakesTheBorder)
{
    // A picture of a card's proportions whose very border is the only rectangle there is.
    for (const QColor& color : { QColor(Qt::black), QColor(Qt::white), QColor(120, 90, 60) }) {
        QImage image(1000, 640, QImage::Format_RGB32);
        image.fill(color);
        EXPECT_TRUE(detect(image).empty());
    }
    QImage ramp(1000, 640, QImage::Format_RGB32);
    for (int y = 0; y < ramp.height(); ++y) {
        for (int x = 0; x < ramp.width(); ++x)
            ramp.setPixelColor(x, y, QColor(x / 4, y / 3, 128));
    }
    EXPECT_TRUE(detect(ramp).empty());
    // A card that fills everything has no sides in the picture.
    EXPECT_TRUE(detect(plainCard({ 1000, 640 }, { 1040, 680 })).empty());
}

TEST(CardRectangles, TakesImagesOfAnySize)
{
    for (const QSize& size :
        { QSize(1, 1), QSize(3, 900), QSize(23, 24), QSize(64, 41), QSize(5000, 2), QSize(97, 61) }) {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, static_cast<QRgb>((x * 7919 + y * 104729) % 0xffffff));
        }
        EXPECT_TRUE(detect(image).empty()) << size.width() << " x " << size.height();
    }
}
