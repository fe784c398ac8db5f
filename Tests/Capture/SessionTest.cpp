#include "Tests/Capture/CaptureRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace kelvara::test {
namespace {

using testing::ElementsAre;

const QSize kSize(64, 48);

TEST(Session, DeliversOffTheMainThreadAndToThePreview)
{
    Rig rig(stillCamera(quarters(kSize)));
    bool onQueue = false;
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

} // namespace
} // namespace kelvara::test
