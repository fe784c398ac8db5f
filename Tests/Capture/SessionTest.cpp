#include "Platform/Foundation/CameraArbiter.h"
#include "Tests/Capture/CaptureRig.h"
#include "Tests/Capture/HandCamera.h"

#include <QGuiApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>

namespace kelvara::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const QSize kSize(64, 48);

std::shared_ptr<ReplayCamera> frontCamera()
{
    return stillCamera(quarters(kSize), { .position = AVCaptureDevicePosition::Front });
}

TEST(Session, DeliversOffTheMainThreadAndToThePreview)
{
    Rig rig(stillCamera(quarters(kSize)));
    std::atomic<bool> onQueue { false };
    rig.delegate.onFrame = [&](const CMSampleBuffer&) { onQueue = rig.queue->isCurrent(); };
    rig.session->startRunning();
    ASSERT_TRUE(rig.delegate.waitForFrames(3));
    ASSERT_TRUE(waitFor([&] { return !rig.preview->image().isNull(); }));
    rig.session->stopRunning();
    rig.queue->drain();
    EXPECT_TRUE(onQueue);
    EXPECT_EQ(quartersOf(rig.preview->image()), "RGBW");
    EXPECT_THAT(rig.told, ElementsAre(true, false));
}

TEST(Session, NeedsAnInputToRun)
{
    AVCaptureSession session;
    session.startRunning();
    EXPECT_FALSE(session.isRunning());
    session.addInput(AVCaptureDeviceInput::make(stillCamera(quarters(kSize))));
    EXPECT_FALSE(session.isRunning()) << "the earlier wish must not count";
    session.startRunning();
    EXPECT_TRUE(session.isRunning());
}

TEST(Session, AnswersForEachCameraByItself)
{
    const auto camera = stillCamera(quarters(kSize));
    const auto back = AVCaptureDeviceInput::make(camera);
    const auto front = AVCaptureDeviceInput::make(frontCamera());
    AVCaptureSession session;
    EXPECT_TRUE(session.canAddInput(back));
    EXPECT_TRUE(session.canAddInput(front));
    EXPECT_FALSE(session.canAddInput(nullptr));
    camera->setInUseByAnotherApplication(true);
    EXPECT_FALSE(session.canAddInput(back));
    camera->setInUseByAnotherApplication(false);
    camera->setConnected(false);
    EXPECT_FALSE(session.canAddInput(back));
    EXPECT_EQ(AVCaptureDeviceInput::make(camera), nullptr);
    EXPECT_EQ(AVCaptureDeviceInput::make(nullptr), nullptr);
    camera->setConnected(true);

    session.addInput(back);
    EXPECT_FALSE(session.canAddInput(back));
    session.addInput(front); // one camera at a time
    EXPECT_THAT(session.inputs(), ElementsAre(back));

    const auto output = std::make_shared<AVCaptureVideoDataOutput>();
    camera->setRefusesVideoDataOutput(true);
    EXPECT_FALSE(session.canAddOutput(output));
    camera->setRefusesVideoDataOutput(false);
    EXPECT_EQ(output->firstConnection(), nullptr);
    session.addOutput(output);
    EXPECT_FALSE(session.canAddOutput(output));
    EXPECT_NE(output->firstConnection(), nullptr);

    AVCaptureSession other;
    EXPECT_FALSE(other.canAddOutput(output)) << "it belongs to a session already";
    EXPECT_TRUE(other.canSetSessionPreset(AVCaptureSessionPreset::Photo));
    other.addInput(AVCaptureDeviceInput::make(std::make_shared<HandCamera>()));
    EXPECT_FALSE(other.canSetSessionPreset(AVCaptureSessionPreset::Photo));
}

TEST(Session, SwitchesCamerasAtTheCommitWithoutFlapping)
{
    const auto back = stillCamera(quarters(kSize), { .sensorRotation = 90 });
    const auto front = frontCamera();
    Rig rig(back);
    AVCaptureConnection* const connection = rig.output->firstConnection();
    AVCaptureConnection* const shown = rig.preview->connection();
    rig.session->startRunning();
    ASSERT_TRUE(rig.delegate.waitForFrames(2));
    EXPECT_TRUE(connection->isVideoOrientationSupported());
    EXPECT_EQ(shown->videoOrientation(), AVCaptureVideoOrientation::Portrait);
    EXPECT_FALSE(shown->isVideoMirrored());

    rig.session->beginConfiguration();
    rig.session->beginConfiguration();
    rig.session->removeInput(rig.input);
    rig.input = AVCaptureDeviceInput::make(front);
    rig.session->addInput(rig.input);
    rig.session->commitConfiguration();
    ASSERT_TRUE(rig.delegate.waitForFrames(2)) << "the old camera serves until the outer commit";
    EXPECT_EQ(front->deliveredFrames(), 0);
    rig.session->commitConfiguration();
    ASSERT_TRUE(rig.delegate.waitForFrames(2));
    EXPECT_GT(front->deliveredFrames(), 0);
    EXPECT_EQ(rig.output->firstConnection(), connection);
    EXPECT_EQ(rig.preview->connection(), shown);
    EXPECT_EQ(connection->videoOrientation(), AVCaptureVideoOrientation::LandscapeRight) << "upright devices say so";
    EXPECT_TRUE(shown->isVideoMirrored());
    rig.session->stopRunning();
    EXPECT_THAT(rig.told, ElementsAre(true, false));
}

TEST(Session, LosesACameraAndTakesItBack)
{
    const auto camera = stillCamera(quarters(kSize));
    Rig rig(camera);
    AVCaptureConnection* const shown = rig.preview->connection();
    rig.session->startRunning();
    ASSERT_TRUE(rig.delegate.waitForFrames(1));
    camera->setConnected(false);
    EXPECT_FALSE(rig.session->isRunning());
    EXPECT_EQ(rig.preview->connection(), shown);
    camera->setConnected(true);
    EXPECT_TRUE(rig.session->isRunning());
    ASSERT_TRUE(rig.delegate.waitForFrames(1));

    camera->setConnected(false);
    rig.session->stopRunning();
    camera->setConnected(true);
    EXPECT_FALSE(rig.session->isRunning());
    EXPECT_THAT(rig.told, ElementsAre(true, false, true, false));
}

TEST(Session, DoesNotRunWhenTheCameraRefusesToStart)
{
    const auto camera = stillCamera(quarters(kSize));
    camera->setRefusesToStart(true);
    Rig rig(camera);
    rig.session->startRunning();
    EXPECT_FALSE(rig.session->isRunning());
    EXPECT_THAT(rig.told, IsEmpty());
    rig.switchTo(frontCamera());
    EXPECT_TRUE(rig.session->isRunning()) << "it is still wanted, and this camera works";
    rig.switchTo(camera);
    EXPECT_FALSE(rig.session->isRunning());
    EXPECT_THAT(rig.told, ElementsAre(true, false));
}

TEST(Session, DropsWhatADeviceSendsAfterTheStop)
{
    const auto camera = std::make_shared<HandCamera>();
    Rig rig(camera);
    camera->send(quarters(kSize));
    rig.session->startRunning();
    // One frame waits in the queue when the session stops; the other comes after.
    std::mutex gate;
    gate.lock();
    rig.queue->async([&] { const std::lock_guard wait(gate); });
    camera->send(quarters(kSize));
    rig.session->stopRunning();
    const QImage shown = rig.preview->image();
    camera->send(quarters({ 8, 8 }));
    gate.unlock();
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 0);
    EXPECT_EQ(rig.preview->image().size(), shown.size());
    EXPECT_EQ(camera->stops, 1);

    // The camera's earlier run stays shut out of the next one.
    rig.switchTo(std::make_shared<HandCamera>());
    rig.session->startRunning();
    camera->send(quarters(kSize));
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 0);
}

TEST(Session, MayBeDeletedByWhoHearsOfIt)
{
    auto session = std::make_unique<AVCaptureSession>();
    const auto camera = stillCamera(quarters(kSize));
    session->addInput(AVCaptureDeviceInput::make(camera));
    QObject::connect(session.get(), &AVCaptureSession::runningChanged, [&](bool running) {
        if (!running)
            session.reset();
    });
    session->startRunning();
    camera->setConnected(false);
    EXPECT_EQ(session, nullptr);

    session = std::make_unique<AVCaptureSession>();
    camera->setConnected(true);
    session->addInput(AVCaptureDeviceInput::make(camera));
    session->startRunning();
    QObject::connect(camera.get(), &AVCaptureDevice::released, [&] { session.reset(); });
    session->stopRunning();
    EXPECT_TRUE(waitFor([&] { return !session; }));
}

TEST(Session, GivesTheCameraAwayForAsLongAsItIsClaimed)
{
    Rig one(stillCamera(quarters(kSize)));
    Rig other(frontCamera());
    one.session->startRunning();
    other.session->beginConfiguration();
    other.session->startRunning();
    other.session->commitConfiguration();
    ASSERT_TRUE(one.session->isRunning() && other.session->isRunning());
    other.session->beginConfiguration();
    auto first = CameraArbiter::shared().claim();
    EXPECT_FALSE(one.session->isRunning());
    EXPECT_FALSE(other.session->isRunning()) << "in the midst of a configuration, too";
    other.session->commitConfiguration();
    auto second = CameraArbiter::shared().claim();
    first.reset();
    Rig late(stillCamera(quarters(kSize)));
    late.session->startRunning();
    EXPECT_FALSE(late.session->isRunning());
    EXPECT_FALSE(other.session->isRunning());
    one.session->stopRunning();
    second.reset();
    EXPECT_FALSE(one.session->isRunning()) << "its owner stopped it meanwhile";
    EXPECT_TRUE(other.session->isRunning());
    EXPECT_TRUE(late.session->isRunning());
    EXPECT_THAT(other.told, ElementsAre(true, false, true));
}

TEST(Session, RunsInTheForegroundOnly)
{
    const auto turn = [](Qt::ApplicationState state) { Q_EMIT qGuiApp->applicationStateChanged(state); };
    const auto camera = stillCamera(quarters(kSize));
    Rig rig(camera);
    rig.session->startRunning();
    auto claim = CameraArbiter::shared().claim();
    turn(Qt::ApplicationInactive);
    turn(Qt::ApplicationHidden);
    turn(Qt::ApplicationSuspended);
    claim.reset();
    EXPECT_FALSE(rig.session->isRunning());
    turn(Qt::ApplicationHidden);
    turn(Qt::ApplicationInactive);
    EXPECT_FALSE(rig.session->isRunning());
    claim = CameraArbiter::shared().claim(); // another call, from the background
    turn(Qt::ApplicationActive);
    EXPECT_FALSE(rig.session->isRunning());
    claim.reset();
    EXPECT_TRUE(rig.session->isRunning());

    camera->setConnected(false);
    turn(Qt::ApplicationHidden);
    camera->setConnected(true);
    EXPECT_FALSE(rig.session->isRunning()) << "plugged in again in the background";
    Rig late(stillCamera(quarters(kSize)));
    late.session->startRunning();
    EXPECT_FALSE(late.session->isRunning());
    rig.session->stopRunning();
    turn(Qt::ApplicationActive);
    EXPECT_FALSE(rig.session->isRunning()) << "its owner stopped it meanwhile";
    EXPECT_TRUE(late.session->isRunning());
    EXPECT_THAT(rig.told, ElementsAre(true, false, true, false));
}

TEST(Session, GoesInAnyOrderWhileRunning)
{
    std::array<int, 4> order { 0, 1, 2, 3 };
    do {
        auto rig = std::make_unique<Rig>(std::make_shared<ReplayCamera>(
            ReplaySource::still(quarters(kSize)), ReplayCameraOptions { .framesPerSecond = 0 }));
        rig->session->startRunning();
        ASSERT_TRUE(rig->delegate.waitForFrames(1));
        for (const int part : order) {
            switch (part) {
            case 0:
                rig->session.reset();
                break;
            case 1:
                rig->preview.reset();
                break;
            case 2:
                rig->output.reset();
                break;
            default:
                rig->camera.reset();
                rig->input.reset();
                break;
            }
            QCoreApplication::processEvents();
        }
        // The delegate goes first of all when an output is still with the session.
        rig->queue->drain();
    } while (std::next_permutation(order.begin(), order.end()));
}

} // namespace
} // namespace kelvara::test
