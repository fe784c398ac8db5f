#include "Kelvara/IDCardUtil.h"
#include "Platform/Chip/NFCPassportModel.h"
#include "Tests/Support/KycHarness.h"

#include <QFile>
#include <gtest/gtest.h>
#include <malloc.h>

namespace kelvara::test {
namespace {

using enum ViewType;

/// Brings the flow to where the given call reaches the delegate, and makes it.
void bringAbout(Stage& stage, const QString& call)
{
    const QPointer<QorvelKycView> view = stage.view;
    if (call == QLatin1String("jitsi")) {
        stage.setSteps({ jitsi });
        return;
    }
    if (call == QLatin1String("close")) {
        stage.setSteps({ nfcRead });
        QTest::mouseClick(stage.d().closeButton, Qt::LeftButton);
        return;
    }
    if (call == QLatin1String("nfc")) {
        stage.setSteps({ nfcRead, idPhoto });
        const auto passport = std::make_shared<NFCPassportModel>();
        passport->faceImage = QImage(4, 4, QImage::Format_RGB32);
        const auto holder = std::make_shared<IDCardUtil>(nullptr);
        holder->setPassport(passport);
        stage.d().onMain([&d = stage.d(), holder] { d.setIDCard(holder); }); // as at the end of a read
        settle();
        return;
    }
    stage.setSteps(call == QLatin1String("selfie") ? QList<ViewType> { selfie } : QList<ViewType> { idPhoto, selfie });
    stage.show(true, true);
    stage.shoot();
    if (view && call == QLatin1String("back")) {
        settle();
        stage.show(true, false);
        stage.view->runTimedCode();
        stage.shoot();
    }
}

class InsideACallback : public testing::TestWithParam<const char*>
{ };

TEST_P(InsideACallback, TheViewMayBeDeleted)
{
    Stage stage;
    stage.delegate.during = [&](QorvelKycView& view, const QString& call) {
        if (call == QLatin1String(GetParam()))
            delete &view;
    };
    bringAbout(stage, QString::fromLatin1(GetParam()));
    settle();
    EXPECT_TRUE(stage.view.isNull());
    EXPECT_EQ(stage.delegate.calls.back(), QLatin1String(GetParam()));
}

TEST_P(InsideACallback, NewStepsMayBeSet)
{
    Stage stage;
    bool once = false;
    stage.delegate.during = [&](QorvelKycView& view, const QString& call) {
        if (call == QLatin1String(GetParam()) && !std::exchange(once, true))
            view.setViewTypes({ nfcRead, selfie });
    };
    bringAbout(stage, QString::fromLatin1(GetParam()));
    settle();
    ASSERT_TRUE(once);
    // Where the flow moves on by itself right after the call, it moves on in the new list.
    const QString call = QString::fromLatin1(GetParam());
    const bool movesOn = QStringList { "back", "selfie", "nfc" }.contains(call);
    const ViewType expected = movesOn ? selfie : call == QLatin1String("jitsi") ? jitsi : nfcRead;
    EXPECT_EQ(stage.d().selectedViewType, expected);
}

TEST_P(InsideACallback, TheDelegateMayGoAway)
{
    Stage stage;
    auto leaving = std::make_unique<RecordingDelegate>();
    leaving->during = [&](QorvelKycView&, const QString&) { leaving.reset(); };
    stage.view->setDelegate(leaving.get());
    bringAbout(stage, QString::fromLatin1(GetParam()));
    settle();
    EXPECT_FALSE(leaving);
    EXPECT_EQ(stage.view->delegate(), nullptr);
    QTest::mouseClick(stage.d().closeButton, Qt::LeftButton);
}

INSTANTIATE_TEST_SUITE_P(All, InsideACallback, testing::Values("front", "back", "selfie", "nfc", "jitsi", "close"),
    [](const auto& row) { return std::string(row.param); });

TEST(RoughHandling, TwoHundredStepChangesASecondWhileFramesArrive)
{
    Stage stage;
    stage.show(true, true);
    const QList<ViewType> steps { idPhoto, selfie, nfcRead, jitsi };
    for (int change = 0; change < 200; ++change) {
        stage.view->setViewTypes({ steps[change % 4], steps[(change + 1) % 4] });
        QTest::qWait(4);
    }
    stage.setSteps({ selfie });
    EXPECT_TRUE(stage.shoot());
    EXPECT_EQ(stage.delegate.calls.back(), QStringLiteral("selfie"));
}

TEST(RoughHandling, ResultsOfAnEarlierStepNeverCount)
{
    Stage stage;
    stage.device.eyes.told->delayMs = 60;
    stage.show(true, true);
    stage.setSteps({ idPhoto });
    ASSERT_TRUE(spinUntil([&] { return stage.device.eyes.told->performed > 0; }));
    // A frame of the card is in analysis now; by the time its face is known, the selfie step has begun.
    stage.view->setViewTypes({ selfie });
    stage.show(false, false);
    QTest::qWait(200);
    EXPECT_FALSE(stage.d().checkFace);
    EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
}

TEST(RoughHandling, ATapRightBehindAStepChangeTakesNoPhotograph)
{
    for (const bool toCard : { true, false }) {
        Stage stage;
        stage.show(true, true);
        stage.setSteps({ toCard ? selfie : idPhoto });
        ASSERT_TRUE(spinUntil([&] { return stage.d().takePhotoButton->isEnabled(); }));
        stage.show(!toCard, !toCard);
        stage.view->setViewTypes({ toCard ? idPhoto : selfie });
        QTest::mouseClick(stage.d().takePhotoButton, Qt::LeftButton);
        settle();
        EXPECT_TRUE(stage.delegate.calls.isEmpty()) << qPrintable(stage.delegate.calls.join(QLatin1Char(' ')));
    }
}

TEST(RoughHandling, AnEventLoopInsideACallbackTakesNoSecondPhotograph)
{
    Stage stage;
    stage.delegate.during = [&](QorvelKycView& view, const QString& call) {
        if (call != QLatin1String("selfie") || stage.delegate.calls.size() > 1)
            return;
        QAbstractButton* shutter = QorvelKycViewPrivate::of(view).takePhotoButton;
        EXPECT_TRUE(spinUntil([&] { return shutter->isEnabled(); })) << "frames go on, and show a face";
        QTest::mouseClick(shutter, Qt::LeftButton);
    };
    stage.show(true, true);
    stage.setSteps({ selfie, nfcRead, jitsi });
    EXPECT_TRUE(stage.shoot());
    settle();
    EXPECT_EQ(stage.delegate.calls, (decltype(stage.delegate.calls) { QStringLiteral("selfie") }));
    EXPECT_EQ(stage.d().selectedViewType, nfcRead);
}

TEST(RoughHandling, AnotherViewTakesTheCameraOver)
{
    Stage first;
    first.setSteps({ idPhoto });
    ASSERT_TRUE(spinUntil([&] { return first.view->isScanning(); }));
    Stage second(first.device);
    second.show(true, true);
    second.setSteps({ idPhoto });
    settle();
    EXPECT_FALSE(second.view->isScanning()) << "one camera serves one view at a time";
    delete first.view.data();
    EXPECT_TRUE(spinUntil([&] { return second.view->isScanning(); }));
    EXPECT_TRUE(second.shoot());
}

TEST(RoughHandling, TheViewMayDieWhileAFrameIsInAnalysis)
{
    for (int round = 0; round < 5; ++round) {
        Stage stage;
        stage.device.eyes.told->delayMs = 30;
        stage.show(true, true);
        stage.setSteps({ idPhoto });
        ASSERT_TRUE(spinUntil([&] { return stage.device.eyes.told->performed > round; }));
        delete stage.view.data();
        settle();
    }
}

TEST(RoughHandling, TheViewMayDieBeforeItsFirstTurn)
{
    const Device device = Device::phone();
    {
        QorvelKycView never(device.services());
    }
    settle();
}

struct SizeRow
{
    QSize view;
    QSize frame;
    int rotation;
};

class OddSizes : public testing::TestWithParam<SizeRow>
{ };

TEST_P(OddSizes, AreAnalysedWithoutHarm)
{
    const SizeRow& row = GetParam();
    Device device;
    ReplayCameraOptions options { .size = row.frame, .framesPerSecond = 100, .sensorRotation = row.rotation };
    device.back = Device::camera(AVCaptureDevicePosition::Back, options);
    device.front = Device::camera(AVCaptureDevicePosition::Front, options);
    Stage stage(device, row.view);
    stage.view->resize(row.view); // a window is never shown smaller than its system's minimum
    stage.show(true, true);
    for (const ViewType step : { idPhoto, selfie }) {
        stage.setSteps({ step });
        const int before = stage.device.eyes.told->performed;
        ASSERT_TRUE(spinUntil([&] { return stage.device.eyes.told->performed > before + 4; }));
        EXPECT_FALSE(stage.view->grab().isNull() && !row.view.isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(All, OddSizes,
    testing::Values(SizeRow { { 0, 0 }, { 270, 480 }, 0 }, SizeRow { { 1, 1 }, { 270, 480 }, 0 },
        SizeRow { { 390, 844 }, { 1, 1 }, 0 }, SizeRow { { 390, 844 }, { 33, 17 }, 90 },
        SizeRow { { 200, 150 }, { 641, 479 }, 0 }, SizeRow { { 844, 390 }, { 640, 480 }, 270 }));

TEST(RoughHandling, TheFrameSizeMayChangeInMidStream)
{
    Device device = Device::phone();
    ReplayCameraOptions fast;
    fast.framesPerSecond = 100;
    device.back
        = std::make_shared<ReplayCamera>(ReplaySource::generator([](std::int64_t index, std::chrono::microseconds) {
              QImage image(index % 2 ? QSize(270, 480) : QSize(135, 241), QImage::Format_ARGB32_Premultiplied);
              image.fill(Qt::gray);
              return image;
          }),
            fast);
    Stage stage(device);
    stage.show(true, true);
    stage.setSteps({ idPhoto });
    EXPECT_TRUE(stage.shoot());
    const int before = stage.device.eyes.told->performed;
    EXPECT_TRUE(spinUntil([&] { return stage.device.eyes.told->performed > before + 20; }));
}

/// Kilobytes of memory that are really in use.
long residentKilobytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').at(1).toLong() * 4;
}

TEST(RoughHandling, TenThousandFramesLeaveNothingBehind)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps memory of its own; measured in the plain build";
#endif
    Device device;
    ReplayCameraOptions eager;
    eager.framesPerSecond = 0;
    device.back = Device::camera(AVCaptureDevicePosition::Back, eager);
    device.front = Device::camera(AVCaptureDevicePosition::Front, eager);
    Stage stage(device);
    stage.show(true, true);
    stage.setSteps({ idPhoto });
    const auto analysed = [&](int frames) {
        const int goal = stage.device.eyes.told->performed + 2 * frames; // two detectors look at each frame
        return spinUntil([&] { return stage.device.eyes.told->performed >= goal; }, 120'000);
    };
    // How much waits for the main thread is the machine's business; what stays when nothing is under way is ours.
    const auto keptAfter = [&](int frames) {
        stage.view->startScanning();
        EXPECT_TRUE(analysed(frames));
        stage.view->stopScanning();
        QTest::qWait(200);
        malloc_trim(0);
        return residentKilobytes();
    };
    const long before = keptAfter(1'000);
    EXPECT_LT(keptAfter(10'000) - before, 4096);
}

} // namespace
} // namespace kelvara::test
