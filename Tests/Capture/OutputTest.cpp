#include "Tests/Capture/CaptureRig.h"
#include "Tests/Capture/HandCamera.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace kelvara::test {
namespace {

const QSize kSize(64, 48);

TEST(Output, DropsFramesWhileOneIsWithTheDelegate)
{
    const auto camera = std::make_shared<HandCamera>();
    Rig rig(camera);
    std::mutex gate;
    gate.lock();
    rig.delegate.onFrame = [&](const CMSampleBuffer&) { const std::lock_guard wait(gate); };
    rig.session->startRunning();
    for (int i = 0; i < 10; ++i)
        camera->send(quarters(kSize));
    gate.unlock();
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 1);
    camera->send(quarters(kSize));
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 2);
}

TEST(Output, LosesItsDelegateInMidFlow)
{
    Rig rig(std::make_shared<ReplayCamera>(
        ReplaySource::still(quarters(kSize)), ReplayCameraOptions { .framesPerSecond = 0 }));
    rig.session->startRunning();
    for (int i = 0; i < 30; ++i) {
        auto queue = std::make_unique<SerialQueue>(QStringLiteral("passing"));
        auto delegate = std::make_unique<Delegate>();
        rig.output->setSampleBufferDelegate(delegate.get(), queue.get());
        ASSERT_TRUE(delegate->waitForFrames(1));
        rig.output->setSampleBufferDelegate(nullptr, nullptr);
        queue->drain();
        delegate.reset(); // a call that still came would be seen by the sanitizers
        queue.reset();
    }
}

TEST(Output, PassesOnADeliveryWithoutAPictureAndDropsADamagedOne)
{
    const auto camera = std::make_shared<HandCamera>();
    Rig rig(camera);
    rig.output->firstConnection()->setVideoMirrored(true);
    rig.session->startRunning();
    camera->send(CMSampleBuffer());
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 1);
    const auto bytes = std::make_shared<std::array<std::uint8_t, 64>>();
    camera->send(CMSampleBuffer(CVPixelBuffer(nullptr, nullptr, 4, 4, 16)));
    camera->send(CMSampleBuffer(CVPixelBuffer(bytes, bytes->data(), 4, 4, 15)));
    camera->send(CMSampleBuffer(CVPixelBuffer(bytes, bytes->data(), 0, 4, 16)));
    rig.queue->drain();
    EXPECT_EQ(rig.delegate.count(), 1);
    EXPECT_TRUE(rig.preview->image().isNull());
}

struct Turn
{
    int sensorRotation;
    AVCaptureVideoOrientation orientation;
    bool mirrored;
    const char* quarters;
    bool upended;
};

void PrintTo(const Turn& turn, std::ostream* out)
{
    *out << "sensor " << turn.sensorRotation << " orientation " << static_cast<int>(turn.orientation)
         << (turn.mirrored ? " mirrored" : "");
}

class Turning : public testing::TestWithParam<Turn>
{ };

TEST_P(Turning, FollowsTheConnection)
{
    const Turn& turn = GetParam();
    const auto camera = std::make_shared<HandCamera>(
        turn.mirrored ? AVCaptureDevicePosition::Front : AVCaptureDevicePosition::Back, turn.sensorRotation);
    Rig rig(camera);
    for (AVCaptureConnection* connection : { rig.output->firstConnection(), rig.preview->connection() }) {
        connection->setVideoOrientation(turn.orientation);
        connection->setVideoMirrored(turn.mirrored);
    }
    rig.session->startRunning();
    const QImage sent = quarters({ 37, 22 });
    camera->send(sent);
    rig.queue->drain();
    const CVPixelBuffer got = rig.delegate.newest();
    EXPECT_EQ(quartersOf(imageOf(got)), turn.quarters);
    EXPECT_EQ(got.size(), turn.upended ? QSize(22, 37) : QSize(37, 22));
    EXPECT_EQ(qAlpha(imageOf(got).pixel(0, 0)), 255);
    EXPECT_EQ(quartersOf(rig.preview->image()), turn.quarters);
    EXPECT_EQ(rig.preview->image().constBits(), got.baseAddress()) << "the same work is done once";
    const bool untouched = rig.output->firstConnection()->rotation() == 0 && !turn.mirrored;
    EXPECT_EQ(got.baseAddress() == sent.constBits(), untouched) << "upright frames pass without a copy";
}

constexpr auto kPortrait = AVCaptureVideoOrientation::Portrait;

INSTANTIATE_TEST_SUITE_P(Rows, Turning,
    testing::Values(Turn { 0, kPortrait, false, "RGBW", false }, Turn { 0, kPortrait, true, "GRWB", false },
        Turn { 90, kPortrait, false, "BRWG", true }, Turn { 90, kPortrait, true, "RBGW", true },
        Turn { 180, kPortrait, false, "WBGR", false }, Turn { 180, kPortrait, true, "BWRG", false },
        Turn { 270, kPortrait, false, "GWRB", true }, Turn { 270, kPortrait, true, "WGBR", true },
        Turn { 90, AVCaptureVideoOrientation::LandscapeRight, false, "RGBW", false },
        Turn { 90, AVCaptureVideoOrientation::LandscapeLeft, false, "WBGR", false },
        Turn { 90, AVCaptureVideoOrientation::PortraitUpsideDown, false, "GWRB", true },
        Turn { 0, AVCaptureVideoOrientation::LandscapeLeft, false, "RGBW", false }));

TEST(Output, UsesItsMemoryAgainAndTakesSizesAsTheyCome)
{
    const auto camera = std::make_shared<HandCamera>();
    Rig rig(camera);
    rig.output->firstConnection()->setVideoMirrored(true);
    std::set<const void*> places;
    rig.delegate.onFrame = [&](const CMSampleBuffer& frame) { places.insert(frame.imageBuffer()->baseAddress()); };
    rig.session->startRunning();
    for (int i = 0; i < 1000; ++i) {
        camera->send(quarters(kSize));
        rig.queue->drain();
    }
    EXPECT_EQ(rig.delegate.count(), 1000);
    EXPECT_LE(places.size(), 8U);
    for (const QSize size : { QSize(1, 1), QSize(641, 479), QSize(3, 200), QSize(64, 48) }) {
        camera->send(quarters(size));
        rig.queue->drain();
        EXPECT_EQ(rig.delegate.newest().size(), size);
        EXPECT_EQ(rig.preview->image().size(), size);
    }
}

TEST(VideoOrientation, FollowsTheInterface)
{
    EXPECT_EQ(videoOrientation(UIInterfaceOrientation::Unknown), kPortrait);
    EXPECT_EQ(videoOrientation(static_cast<UIInterfaceOrientation>(9)), kPortrait);
    for (const int raw : { 1, 2, 3, 4 })
        EXPECT_EQ(static_cast<int>(videoOrientation(static_cast<UIInterfaceOrientation>(raw))), raw);
}

} // namespace
} // namespace kelvara::test
