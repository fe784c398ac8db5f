#include "Tests/Capture/CaptureRig.h"
#include "Tests/Capture/HandCamera.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kelvara::test {
namespace {

void expectNear(const QRectF& got, const QRectF& wanted)
{
    EXPECT_NEAR(got.x(), wanted.x(), 1e-9);
    EXPECT_NEAR(got.y(), wanted.y(), 1e-9);
    EXPECT_NEAR(got.width(), wanted.width(), 1e-9);
    EXPECT_NEAR(got.height(), wanted.height(), 1e-9);
}

struct MappingRow
{
    AVLayerVideoGravity gravity;
    int rotation;
    bool mirrored;
    QSizeF shown;
    QRectF layer;
    QRectF sensor;
};

void PrintTo(const MappingRow& row, std::ostream* out)
{
    *out << "gravity " << static_cast<int>(row.gravity) << " rotation " << row.rotation
         << (row.mirrored ? " mirrored " : " ") << row.shown.width() << "x" << row.shown.height();
}

constexpr auto kFill = AVLayerVideoGravity::ResizeAspectFill;

class Mapping : public testing::TestWithParam<MappingRow>
{ };

TEST_P(Mapping, LeadsToSensorAxes)
{
    const MappingRow& row = GetParam();
    const PreviewMapping mapping { QRectF(10, 20, 200, 400), row.gravity, row.rotation, row.mirrored };
    expectNear(mapping.metadataOutputRectOfInterest(row.layer, row.shown), row.sensor);
}

// The layer shows 200×400 points at (10, 20). Rectangles lie in its upper left quarter unless said otherwise.
const QRectF kQuarter(10, 20, 100, 100); // of a picture that fits exactly: half its width, a quarter of its height

INSTANTIATE_TEST_SUITE_P(Rows, Mapping,
    testing::Values(MappingRow { kFill, 0, false, { 100, 200 }, kQuarter, { 0, 0, 0.5, 0.25 } },
        MappingRow { kFill, 0, true, { 100, 200 }, kQuarter, { 0.5, 0, 0.5, 0.25 } },
        // Turned clockwise, the shown top left is the sensor's bottom left.
        MappingRow { kFill, 90, false, { 100, 200 }, kQuarter, { 0, 0.5, 0.25, 0.5 } },
        MappingRow { kFill, 90, true, { 100, 200 }, kQuarter, { 0, 0, 0.25, 0.5 } },
        MappingRow { kFill, 180, false, { 100, 200 }, kQuarter, { 0.5, 0.75, 0.5, 0.25 } },
        MappingRow { kFill, 180, true, { 100, 200 }, kQuarter, { 0, 0.75, 0.5, 0.25 } },
        MappingRow { kFill, 270, false, { 100, 200 }, kQuarter, { 0.75, 0, 0.25, 0.5 } },
        MappingRow { kFill, 270, true, { 100, 200 }, kQuarter, { 0.75, 0.5, 0.25, 0.5 } },
        // A picture twice as wide as high: filling, the layer shows a quarter of its width.
        MappingRow { kFill, 0, false, { 400, 200 }, { 10, 20, 200, 400 }, { 0.375, 0, 0.25, 1 } },
        MappingRow { AVLayerVideoGravity::ResizeAspect, 0, false, { 400, 200 }, { 10, 170, 200, 100 }, { 0, 0, 1, 1 } },
        MappingRow {
            AVLayerVideoGravity::ResizeAspect, 0, false, { 400, 200 }, { 10, 20, 200, 400 }, { 0, -1.5, 1, 4 } },
        MappingRow { AVLayerVideoGravity::Resize, 0, false, { 400, 200 }, { 10, 20, 50, 400 }, { 0, 0, 0.25, 1 } },
        // A card's cut-out in the middle of a phone's screen; the frame is the turned 1080×1920 one.
        MappingRow {
            kFill, 90, false, { 1080, 1920 }, { 60, 170, 100, 100 }, { 0.375, 0.5 - 50 / 225.0, 0.25, 100 / 225.0 } },
        MappingRow { kFill, 0, false, { 0, 200 }, kQuarter, {} },
        MappingRow { kFill, 90, true, { 100, 200 }, { 10, 20, 0, 5 }, {} }));

TEST(Mapping, GivesTheCentredCutoutOfATurnedFrame)
{
    // What a capture view does with it: the frame is turned, the rectangle is the sensor's, so x and y swap.
    const QRectF bounds(0, 0, 360, 640);
    const QSizeF frame(1080, 1920);
    const PreviewMapping mapping { bounds, kFill, 90, false };
    const QRectF r = mapping.metadataOutputRectOfInterest(QRectF(30, 225, 300, 190), frame);
    expectNear(
        { r.top() * frame.width(), r.left() * frame.height(), r.height() * frame.width(), r.width() * frame.height() },
        { 90, 675, 900, 570 });
}

TEST(Mapping, NeverYieldsNaN)
{
    const double huge = std::numeric_limits<double>::max();
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double a : { 0.0, -1.0, tiny, 1.0, huge, nan })
        for (const double b : { 0.0, -1.0, tiny, 1.0, huge, nan })
            for (const QRectF& layer : { QRectF(0, 0, a, b), QRectF(a, b, 1, 1) })
                for (const auto gravity : { kFill, AVLayerVideoGravity::ResizeAspect, AVLayerVideoGravity::Resize }) {
                    const PreviewMapping mapping { QRectF(0, 0, b, a), gravity, 90, true };
                    const QRectF got = mapping.metadataOutputRectOfInterest(layer, QSizeF(a, 1));
                    EXPECT_TRUE(std::isfinite(got.x() + got.y() + got.width() + got.height())) << a << " " << b;
                }
}

QImage painted(const AVCaptureVideoPreviewLayer& layer, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    layer.paint(painter);
    return image;
}

struct Shown
{
    AVCaptureDevicePosition position;
    AVLayerVideoGravity gravity;
    const char* quarters; ///< Within the layer.
    bool bars; ///< The middle of the layer's upper edge stays unpainted.
};

void PrintTo(const Shown& shown, std::ostream* out)
{
    *out << "position " << static_cast<int>(shown.position) << " gravity " << static_cast<int>(shown.gravity);
}

class PreviewPaint : public testing::TestWithParam<Shown>
{ };

TEST_P(PreviewPaint, FillsItsFrame)
{
    const auto camera = std::make_shared<HandCamera>(GetParam().position);
    Rig rig(camera);
    rig.preview->setVideoGravity(GetParam().gravity);
    rig.preview->setFrame({ 10, 20, 60, 80 });
    EXPECT_EQ(painted(*rig.preview, { 80, 120 }).pixel(40, 60), 0U) << "nothing before the first picture";
    EXPECT_TRUE(rig.preview->metadataOutputRectOfInterest({ 10, 20, 60, 80 }).isNull());
    rig.session->startRunning();
    camera->send(quarters({ 320, 200 }));
    const QImage image = painted(*rig.preview, { 80, 120 });
    EXPECT_EQ(quartersOf(image.copy(10, 20 + 24, 60, 32)), GetParam().quarters);
    EXPECT_EQ(qAlpha(image.pixel(40, 22)), GetParam().bars ? 0 : 255);
    for (const QPoint outside : { QPoint(9, 60), QPoint(70, 60), QPoint(40, 19), QPoint(40, 100) })
        EXPECT_EQ(image.pixel(outside), 0U);
    EXPECT_FALSE(rig.preview->metadataOutputRectOfInterest({ 10, 20, 60, 80 }).isNull());
}

INSTANTIATE_TEST_SUITE_P(Rows, PreviewPaint,
    testing::Values(Shown { AVCaptureDevicePosition::Back, kFill, "RGBW", false },
        Shown { AVCaptureDevicePosition::Front, kFill, "GRWB", false },
        Shown { AVCaptureDevicePosition::Back, AVLayerVideoGravity::ResizeAspect, "RGBW", true },
        Shown { AVCaptureDevicePosition::Front, AVLayerVideoGravity::ResizeAspect, "GRWB", true },
        Shown { AVCaptureDevicePosition::Back, AVLayerVideoGravity::Resize, "RGBW", false }));

TEST(Preview, AsksForOnePaintAtATime)
{
    const auto camera = std::make_shared<HandCamera>();
    Rig rig(camera);
    int asked = 0;
    QObject::connect(rig.preview.get(), &AVCaptureVideoPreviewLayer::needsDisplay, [&] { ++asked; });
    rig.session->startRunning();
    for (int round = 1; round <= 2; ++round) {
        for (int i = 1; i <= 5; ++i)
            camera->send(quarters({ i, round }));
        ASSERT_TRUE(waitFor([&] { return asked >= round; }));
        QCoreApplication::processEvents();
        EXPECT_EQ(asked, round);
        EXPECT_EQ(rig.preview->image().size(), QSize(5, round)) << "the newest is shown";
    }
    camera->send(quarters({ 5, 5 }));
    rig.preview.reset(); // with a paint pending
    QCoreApplication::processEvents();
    EXPECT_EQ(asked, 2);
}

} // namespace
} // namespace kelvara::test
