#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Scene.h"

#include <QCryptographicHash>
#include <QLineF>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <future>

namespace kelvara::specimen {

namespace {

constexpr std::array subjects { Subject::Front, Subject::Back, Subject::Nothing, Subject::Hand, Subject::Phone,
    Subject::Selfie };

QByteArray fingerprint(std::uint32_t seed, SceneOptions options)
{
    const QImage image = photograph(SpecimenData::fromSeed(seed), options).image;
    EXPECT_EQ(image.size(), options.size);
    return QCryptographicHash::hash(QByteArrayView(image.constBits(), image.sizeInBytes()), QCryptographicHash::Sha256);
}

TEST(Scene, FollowsFromItsSeedAlone)
{
    const QSize size(320, 240);
    for (const Subject subject : subjects) {
        SCOPED_TRACE(static_cast<int>(subject));
        SceneOptions options = ordinary(11, subject, size);
        options.fingers = true;
        options.glare = 0.5;
        const QByteArray first = fingerprint(11, options);
        // Other scenes push this one out of every cache, so that all of it is made anew; by another thread as well.
        for (std::uint32_t seed = 100; seed < 114; ++seed)
            EXPECT_NE(fingerprint(seed, ordinary(seed, subject, size)), first);
        auto elsewhere = std::async(std::launch::async, [&] { return fingerprint(11, options); });
        const QByteArray here = fingerprint(11, options);
        EXPECT_EQ(elsewhere.get(), first);
        EXPECT_EQ(here, first);
        options.shift += QPointF(0.25, 0);
        EXPECT_NE(fingerprint(11, options), first) << "every frame of a film has its own noise";
    }
}

/// Where the picture passes from surface to card on the normal through `at`, as pixels inwards of `at`.
double crossing(const QImage& image, QPointF at, QPointF inwards)
{
    const auto grey = [&](double distance) {
        const QPointF p = at + distance * inwards - QPointF(0.5, 0.5); // pixel centres
        const int x = static_cast<int>(std::floor(p.x()));
        const int y = static_cast<int>(std::floor(p.y()));
        const double u = p.x() - x;
        const double v = p.y() - y;
        const auto g = [&](int dx, int dy) { return qGray(image.pixel(x + dx, y + dy)); };
        return (1 - v) * ((1 - u) * g(0, 0) + u * g(1, 0)) + v * ((1 - u) * g(0, 1) + u * g(1, 1));
    };
    const double outside = grey(-4);
    const double inside = grey(6);
    EXPECT_GT(inside, outside + 40);
    for (double distance = -4; distance < 6; distance += 0.05) {
        if (grey(distance) > (outside + inside) / 2)
            return distance;
    }
    return 99;
}

TEST(Scene, TrueCornersLieOnTheCardsBorder)
{
    struct Row
    {
        double fill, roll, pitch, yaw;
        QSize size;
        QRectF frame;
    };
    const std::vector<Row> rows { { 0.8, 0, 0, 0, { 1000, 700 }, {} }, { 0.7, 6, 8, -12, { 1000, 700 }, {} },
        { 0.9, -4, -10, 6, { 1080, 1400 }, {} }, { 0.7, 170, 0, 20, { 1000, 800 }, {} },
        { 0.9, 3, 0, 0, { 900, 1200 }, QRectF(100, 500, 700, 440) } };
    for (const Row& row : rows) {
        for (const Subject side : { Subject::Front, Subject::Back }) {
            SceneOptions options;
            options.seed = 8; // a dark surface on which nothing bright lies beside the card
            options.subject = side;
            options.background = Background::Dark;
            options.size = row.size;
            options.frame = row.frame;
            options.fill = row.fill;
            options.rollDegrees = row.roll;
            options.pitchDegrees = row.pitch;
            options.yawDegrees = row.yaw;
            options.noise = 0;
            const Scene scene = photograph(SpecimenData::fromSeed(3), options);
            ASSERT_TRUE(scene.corners);
            ASSERT_EQ(scene.corners->size(), 4);
            const QPolygonF& corners = *scene.corners;
            QPointF middle;
            for (const QPointF corner : corners)
                middle += corner / 4;
            for (int i = 0; i < 4; ++i) {
                const QLineF edge(corners[i], corners[(i + 1) % 4]);
                QPointF normal(-edge.dy() / edge.length(), edge.dx() / edge.length());
                for (const double t : { 0.15, 0.3, 0.5, 0.7, 0.85 }) {
                    const double off = crossing(scene.image, edge.pointAt(t), normal);
                    EXPECT_NEAR(off, 0, 0.8) << "edge " << i << " at " << t;
                }
                EXPECT_GT(QPointF::dotProduct(middle - corners[i], normal), 0) << "corners run clockwise";
            }
            EXPECT_EQ(scene.face.has_value(), side == Subject::Front);
            if (scene.face) {
                EXPECT_TRUE(corners.boundingRect().contains(*scene.face));
                EXPECT_TRUE(corners.containsPoint(scene.face->center(), Qt::OddEvenFill));
            }
        }
    }
}

TEST(Scene, OrdinaryUseKeepsTheCardWholeAndTakable)
{
    for (const QSize size : { QSize(1000, 700), QSize(1080, 1920), QSize(640, 480) }) {
        double narrowest = 2;
        double widest = 0;
        for (std::uint32_t seed = 0; seed < 1500; ++seed) {
            const SceneOptions options = ordinary(seed, Subject::Back, size);
            const QPolygonF corners = cornersOf(options);
            EXPECT_GE(aspectOf(corners), 1.35);
            EXPECT_LE(aspectOf(corners), 1.60);
            EXPECT_GE(options.fill, 0.60);
            EXPECT_LE(options.fill, 0.99);
            EXPECT_LE(std::abs(options.rollDegrees), 7);
            EXPECT_TRUE(QRectF(QPointF(0, 0), size).contains(corners.boundingRect())) << seed;
            narrowest = std::min(narrowest, options.fill);
            widest = std::max(widest, options.fill);
        }
        EXPECT_LT(narrowest, 0.62) << "the range is used";
        EXPECT_GT(widest, 0.94);
    }
    for (std::uint32_t seed = 0; seed < 12; ++seed) {
        const SceneOptions options = ordinary(seed, Subject::Selfie, { 216, 384 });
        const Scene scene = photograph(SpecimenData::fromSeed(seed), options);
        ASSERT_TRUE(scene.face);
        EXPECT_TRUE(QRectF(scene.image.rect()).contains(*scene.face));
        EXPECT_GE(scene.face->height() / 384, 0.34);
        EXPECT_FALSE(scene.corners);
    }
}

TEST(Scene, AnySizeAndAnyOptionGiveAnOpaquePicture)
{
    for (const QSize size : { QSize(1, 1), QSize(2, 90), QSize(70, 3) }) {
        for (const Subject subject : subjects) {
            SceneOptions options = ordinary(4, subject, size);
            options.fingers = true;
            options.shadow = options.glare = options.lowContrast = 1;
            options.motionBlur = 9;
            options.focusBlur = 3;
            options.noise = 60;
            options.exposure = subject == Subject::Hand ? -9 : 9;
            for (const double tilt : { 0.0, 89.0 }) {
                options.yawDegrees = tilt;
                const Scene scene = photograph(SpecimenData::fromSeed(4), options);
                ASSERT_EQ(scene.image.size(), size);
                EXPECT_EQ(scene.image.format(), QImage::Format_ARGB32_Premultiplied);
                for (int y = 0; y < size.height(); ++y)
                    for (int x = 0; x < size.width(); ++x)
                        ASSERT_EQ(qAlpha(scene.image.pixel(x, y)), 255);
                for (const QPointF corner : scene.corners.value_or(QPolygonF()))
                    EXPECT_TRUE(std::isfinite(corner.x()) && std::isfinite(corner.y()));
            }
        }
    }
    SceneOptions nothing;
    nothing.size = {};
    EXPECT_TRUE(photograph(SpecimenData::fromSeed(1), nothing).image.isNull());
}

double redness(QRgb colour)
{
    return static_cast<double>(qRed(colour)) / (qRed(colour) + qGreen(colour) + qBlue(colour) + 1);
}

TEST(Scene, FingerHidesPartOfExactlyOneEdge)
{
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        SceneOptions options;
        options.seed = seed;
        options.noise = 0;
        options.background = Background::Dark;
        const SpecimenData data = SpecimenData::fromSeed(seed);
        const Scene bare = photograph(data, options);
        options.fingers = true;
        const QImage held = photograph(data, options).image;
        std::vector<double> hidden;
        for (int i = 0; i < 4; ++i) {
            const QLineF edge(bare.corners->at(i), bare.corners->at((i + 1) % 4));
            int changed = 0;
            for (int step = 0; step < 1000; ++step) {
                const QPoint p = edge.pointAt((step + 0.5) / 1000).toPoint();
                const QPoint q = (QLineF(p, QRectF(held.rect()).center()).unitVector().p2()).toPoint();
                changed += redness(held.pixel(q)) > redness(bare.image.pixel(q)) + 0.03; // a shadow is no redder
            }
            if (changed > 0)
                hidden.push_back(changed / 1000.0);
        }
        ASSERT_EQ(hidden.size(), 1U);
        EXPECT_GT(hidden[0], 0.07);
        EXPECT_LT(hidden[0], 0.17);
    }
}

TEST(Scene, ShakeIsSmoothAndStaysNear)
{
    SceneOptions options;
    options.size = { 1080, 1920 };
    const QPolygonF still = cornersOf(options);
    QPolygonF last = cornersOf(shaken(options, 0));
    double farthest = 0;
    for (int frame = 1; frame < 1800; ++frame) {
        const QPolygonF now = cornersOf(shaken(options, frame / 30.0));
        for (int i = 0; i < 4; ++i) {
            EXPECT_LT(QLineF(now[i], last[i]).length(), 10.8) << frame;
            farthest = std::max(farthest, QLineF(now[i], still[i]).length());
        }
        last = now;
    }
    EXPECT_GT(farthest, 5);
    EXPECT_LT(farthest, 45);
}

} // namespace

} // namespace kelvara::specimen
