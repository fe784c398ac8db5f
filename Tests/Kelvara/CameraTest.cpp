#include "Kelvara/ScanAreaMapping.h"
#include "Tests/Support/KycHarness.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;

bool delivers(const Stage& stage)
{
    const int before = stage.device.eyes.told->performed;
    return spinUntil([&] { return stage.device.eyes.told->performed > before + 2; });
}

TEST(Camera, RunsFollowsTheStepAndIsObservable)
{
    Stage stage;
    QSignalSpy spy(stage.view, &QorvelKycView::isScanningChanged);
    EXPECT_FALSE(stage.view->isScanning()) << "the state follows a turn later";
    stage.setSteps({ idPhoto, selfie });
    ASSERT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
    EXPECT_EQ(spy.count(), 1);
    EXPECT_TRUE(stage.view->property("isScanning").toBool());
    const QorvelKycViewPrivate& d = stage.d();
    EXPECT_EQ(d.captureSession->inputs(), std::vector { d.backInput });
    stage.d().showSelfieView();
    EXPECT_EQ(d.captureSession->inputs(), std::vector { d.frontInput });
    EXPECT_TRUE(d.videoDataOutput->firstConnection()->isVideoMirrored());
    EXPECT_TRUE(delivers(stage));
    stage.d().showIdPhotoView();
    EXPECT_EQ(d.captureSession->inputs(), std::vector { d.backInput });
    EXPECT_FALSE(d.videoDataOutput->firstConnection()->isVideoMirrored());
    settle();
    EXPECT_TRUE(stage.view->isScanning());
    stage.view->stopScanning();
    ASSERT_TRUE(spinUntil([&] { return !stage.view->isScanning(); }));
    stage.view->startScanning();
    EXPECT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
}

/// What the system tells the application; in the foreground again at the end of a test, whatever came of it.
class Background : public testing::Test
{
protected:
    static void tell(Qt::ApplicationState state) { Q_EMIT qGuiApp->applicationStateChanged(state); }
    void TearDown() override { tell(Qt::ApplicationActive); }
};

TEST_F(Background, PausesOnlyWhatRan)
{
    Stage stage;
    stage.setSteps({ idPhoto });
    ASSERT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
    tell(Qt::ApplicationInactive); // another window has the focus, ours is still seen
    settle();
    EXPECT_TRUE(stage.view->isScanning());
    EXPECT_FALSE(stage.d().isScanningPaused);
    for (const auto state : { Qt::ApplicationHidden, Qt::ApplicationSuspended }) {
        tell(state);
        EXPECT_TRUE(stage.d().isScanningPaused);
        ASSERT_TRUE(spinUntil([&] { return !stage.view->isScanning(); }));
        tell(Qt::ApplicationInactive);
        EXPECT_TRUE(stage.d().isScanningPaused);
        tell(Qt::ApplicationActive);
        EXPECT_FALSE(stage.d().isScanningPaused);
        ASSERT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
    }
    stage.view->stopScanning();
    ASSERT_TRUE(spinUntil([&] { return !stage.view->isScanning(); }));
    tell(Qt::ApplicationHidden);
    EXPECT_FALSE(stage.d().isScanningPaused);
    tell(Qt::ApplicationActive);
    settle();
    EXPECT_FALSE(stage.view->isScanning());
}

TEST_F(Background, MayComeInTheTurnOfCreation)
{
    Stage stage;
    ASSERT_TRUE(stage.d().captureSession->isRunning()) << "although the view does not know it yet";
    tell(Qt::ApplicationHidden);
    EXPECT_FALSE(stage.d().captureSession->isRunning());
    tell(Qt::ApplicationActive);
    stage.setSteps({ idPhoto });
    EXPECT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
    EXPECT_TRUE(delivers(stage));
}

struct TroubleRow
{
    const char* name;
    std::function<void(Device&)> trouble;
    const char* text;
    bool runs;
};

void PrintTo(const TroubleRow& row, std::ostream* out)
{
    *out << row.name;
}

class Trouble : public testing::TestWithParam<TroubleRow>
{ };

TEST_P(Trouble, IsWrittenDownAndHarmless)
{
    Device device = Device::phone();
    GetParam().trouble(device);
    Stage stage(device);
    stage.setSteps({ idPhoto, selfie });
    EXPECT_EQ(stage.d().noCameraText, QLatin1String(GetParam().text));
    stage.view->startScanning();
    QTest::qWait(30);
    EXPECT_EQ(stage.view->isScanning(), GetParam().runs);
    stage.d().showSelfieView();
    stage.d().showIdPhotoView();
    settle();
    stage.view->stopScanning();
}

INSTANTIATE_TEST_SUITE_P(All, Trouble,
    testing::Values(TroubleRow { "none", [](Device&) {}, "", true },
        TroubleRow { "noBack", [](Device& d) { d.back.reset(); }, "no back camera", false },
        TroubleRow { "noFront", [](Device& d) { d.front.reset(); }, "no front camera", false },
        TroubleRow { "backUnplugged", [](Device& d) { d.back->setConnected(false); },
            "could not create input device from back camera", false },
        TroubleRow { "frontUnplugged", [](Device& d) { d.front->setConnected(false); },
            "could not create input device from front camera", false },
        TroubleRow { "backRefusesTheSession", [](Device& d) { d.back->setInUseByAnotherApplication(true); },
            "could not add back camera input to capture session", false },
        TroubleRow { "frontRefusesTheSession", [](Device& d) { d.front->setInUseByAnotherApplication(true); },
            "could not add front camera input to capture session", false },
        TroubleRow { "noVideoData", [](Device& d) { d.back->setRefusesVideoDataOutput(true); },
            "could not add video output", true },
        TroubleRow { "doesNotStart", [](Device& d) { d.back->setRefusesToStart(true); }, "", false }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Camera, AnUnpluggedCameraComesBack)
{
    Stage stage;
    stage.setSteps({ idPhoto });
    ASSERT_TRUE(delivers(stage));
    stage.device.back->setConnected(false);
    ASSERT_TRUE(spinUntil([&] { return !stage.view->isScanning(); }));
    stage.device.back->setConnected(true);
    ASSERT_TRUE(spinUntil([&] { return stage.view->isScanning(); }));
    EXPECT_TRUE(delivers(stage));
    // The same when a step begins while its camera is away.
    stage.device.front->setConnected(false);
    stage.setSteps({ selfie });
    EXPECT_TRUE(spinUntil([&] { return !stage.view->isScanning(); }));
    stage.device.front->setConnected(true);
    EXPECT_TRUE(delivers(stage));
}

struct ScanAreaRow
{
    const char* name;
    QSize view;
    QSize frame; ///< upright
    int sensorRotation;
    ViewType step;
    QSizeF expected; ///< of the cut-out in frame pixels
};

void PrintTo(const ScanAreaRow& row, std::ostream* out)
{
    *out << row.name;
}

class ScanArea : public testing::TestWithParam<ScanAreaRow>
{ };

/// The analysed picture is the cut-out as the aspect-filled preview shows it, whichever way the sensor lies, and lies
/// where hosts' tests are told to hold things.
TEST_P(ScanArea, IsWhatTheCutoutShows)
{
    const ScanAreaRow& row = GetParam();
    Device device;
    ReplayCameraOptions options { .size = row.frame, .sensorRotation = row.sensorRotation };
    if (row.sensorRotation % 180)
        options.size.transpose();
    device.back = Device::camera(AVCaptureDevicePosition::Back, options);
    device.front = Device::camera(AVCaptureDevicePosition::Front, options);
    Stage stage(device, row.view);
    stage.setSteps({ row.step });
    ASSERT_TRUE(delivers(stage));
    ASSERT_TRUE(spinUntil([&] { return stage.device.eyes.told->lastWidth != row.frame.width(); }));
    // Made integral outwards: up to a pixel more on either side.
    EXPECT_NEAR(stage.device.eyes.told->lastWidth, row.expected.width() + 1, 1);
    EXPECT_NEAR(stage.device.eyes.told->lastHeight, row.expected.height() + 1, 1);

    const auto geometry = stage.d().geometry.load();
    const auto areas = specimen::ScanAreas::of(row.view, row.frame);
    const QRectF told = row.step == selfie ? areas.oval : areas.card;
    const QRectF seen = scanAreaInFrame(
        row.step == selfie ? *geometry->cutoutSelfieRect : *geometry->cutoutRect, *geometry, row.frame);
    EXPECT_NEAR(told.left(), seen.left(), 0.01);
    EXPECT_NEAR(told.top(), seen.top(), 0.01);
    EXPECT_NEAR(told.width(), seen.width(), 0.01);
    EXPECT_NEAR(told.height(), seen.height(), 0.01);
}

// Aspect-fill of 270 × 480 into 390 × 844 points shows 480 rows on 844 points; of 640 × 480 into 844 × 390 it shows
// 640 columns on 844 points.
INSTANTIATE_TEST_SUITE_P(All, ScanArea,
    testing::Values(ScanAreaRow { "uprightCard", { 390, 844 }, { 270, 480 }, 0, idPhoto,
                        { 351 * 480 / 844.0, 351 / 1.42 * 480 / 844.0 } },
        ScanAreaRow { "phoneSensorCard", { 390, 844 }, { 270, 480 }, 90, idPhoto,
            { 351 * 480 / 844.0, 351 / 1.42 * 480 / 844.0 } },
        ScanAreaRow {
            "phoneSensorSelfie", { 390, 844 }, { 270, 480 }, 270, selfie, { 300 * 480 / 844.0, 400 * 480 / 844.0 } },
        ScanAreaRow {
            "webcam", { 844, 390 }, { 640, 480 }, 0, idPhoto, { 292.5 * 1.42 * 640 / 844.0, 292.5 * 640 / 844.0 } },
        ScanAreaRow { "webcamSelfieInASquare", { 600, 600 }, { 640, 480 }, 0, selfie, { 240, 320 } }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Camera, OnlyTheFirstFaceIsKept)
{
    Stage stage;
    stage.setSteps({ selfie });
    stage.show(false, true);
    ASSERT_TRUE(spinUntil([&] { return stage.d().capturedFace.has_value(); }));
    const QSizeF face = stage.d().capturedFace->size();
    EXPECT_NEAR(face.width(), stage.device.eyes.told->lastWidth * 0.5, 1.01);
    EXPECT_NEAR(face.height(), stage.device.eyes.told->lastHeight * 0.25, 1.01);
}

TEST(Camera, TheTorchFollowsTheHardware)
{
    Device device = Device::phone();
    ReplayCameraOptions withTorch;
    withTorch.hasTorch = true;
    device.back = Device::camera(AVCaptureDevicePosition::Back, withTorch);
    Stage stage(device);
    stage.setSteps({ idPhoto });
    ToggleButton* flash = stage.d().flashButton;
    QTest::mouseClick(flash, Qt::LeftButton);
    EXPECT_TRUE(device.back->isTorchActive());
    EXPECT_TRUE(flash->isOn());
    QTest::mouseClick(flash, Qt::LeftButton);
    EXPECT_FALSE(device.back->isTorchActive());

    device.back->setRefusesConfiguration(true);
    device.back->setRefusesTorch(true);
    testing::internal::CaptureStdout();
    QTest::mouseClick(flash, Qt::LeftButton);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "aaaa\nbbb\n");
    EXPECT_FALSE(device.back->isTorchActive());
    EXPECT_EQ(device.back->configurationLocks(), 0);
}

TEST(Camera, WhereThereIsNoTorchNothingButALineIsPrinted)
{
    QorvelKycView noCameras(PlatformServices {});
    Stage noCamera { Device::withoutCameras() };
    Stage noTorch;
    const auto printedBy = [](QorvelKycView& tapped) {
        testing::internal::CaptureStdout();
        QMetaObject::invokeMethod(&tapped, "flashState");
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(printedBy(noCameras), "");
    EXPECT_EQ(printedBy(*noCamera.view), "");
    EXPECT_EQ(printedBy(*noTorch.view), "bbb\n");
    EXPECT_EQ(noTorch.device.back->configurationLocks(), 0);
}

} // namespace
} // namespace kelvara::test
