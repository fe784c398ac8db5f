#include "Kelvara/SdkModel.h"
#include "Tests/Kelvara/WidgetTools.h"
#include "Tests/Support/KycHarness.h"

#include <gtest/gtest.h>

#include <numbers>

namespace kelvara::test {
namespace {

using enum ViewType;

struct TapRow
{
    const char* name;
    ViewType step;
    bool isFront;
    const char* call; ///< Of the delegate.
};

void PrintTo(const TapRow& row, std::ostream* out)
{
    *out << row.name;
}

class Taps : public testing::TestWithParam<TapRow>
{ };

TEST_P(Taps, SpinTheShutter)
{
    const TapRow& row = GetParam();
    AnimationClock clock;
    Stage stage;
    stage.d().isFront = row.isFront;
    stage.setSteps({ row.step });
    stage.delegate.calls.clear();
    stage.show(true, row.isFront);
    const CircleButton* shutter = stage.d().takePhotoButton;
    if (stage.isShown(shutter))
        ASSERT_TRUE(stage.shoot());
    else
        QMetaObject::invokeMethod(stage.view, "analyzeCard");
    EXPECT_EQ(stage.delegate.calls.join(u' '), row.call);
    EXPECT_EQ(stage.d().selectedViewType, row.step);
    ASSERT_TRUE(shutter->image() && shutter->backgroundImage());
    EXPECT_EQ(shutter->image()->name(), "loading_card");
    EXPECT_EQ(shutter->backgroundImage()->name(), "camera_button_off");
    clock.pass(4000); // the hint to turn the card over has ended, too
    EXPECT_DOUBLE_EQ(shutter->rotation(), std::numbers::pi);
}

INSTANTIATE_TEST_SUITE_P(All, Taps,
    testing::Values(TapRow { "front", idPhoto, true, "front" }, TapRow { "back", idPhoto, false, "back" },
        TapRow { "selfie", selfie, true, "selfie" }, TapRow { "chip", nfcRead, true, "" },
        TapRow { "call", jitsi, true, "" }),
    [](const auto& row) { return std::string(row.param.name); });

/// A tap that no camera and no detector went before.
class CommitDeathTest : public testing::Test
{
protected:
    void tapAt(ViewType step, bool isFront)
    {
        stage.d().selectedViewType = step;
        stage.d().isFront = isFront;
        stage.d().analyzeCard();
    }
    static inline const std::pair<ViewType, bool> kSides[] { { idPhoto, true }, { idPhoto, false }, { selfie, true } };

    Stage stage { Device::withoutCameras() };
    const QImage picture { 40, 30, QImage::Format_RGB32 };
};

TEST_F(CommitDeathTest, WithoutAFrameThereIsNoPhotograph)
{
    for (const auto& [step, isFront] : kSides)
        EXPECT_DEATH(tapAt(step, isFront), "A photograph was taken before the camera delivered a frame");
}

TEST_F(CommitDeathTest, AHostIsNeverHandedHalfAPhotograph)
{
    stage.d().inputCGImage.store(picture);
    for (const auto& [step, isFront] : kSides)
        EXPECT_DEATH(tapAt(step, isFront), "one of its images or texts is missing");
    // An image that could not be drawn has no text either.
    stage.d().capturedImage = stage.d().capturedFace = UIImage();
    for (const auto& [step, isFront] : kSides)
        EXPECT_DEATH(tapAt(step, isFront), "one of its images or texts is missing");
}

TEST_F(CommitDeathTest, WithoutAHostAMissingCropIsJustAbsent)
{
    stage.view->setDelegate(nullptr);
    stage.d().inputCGImage.store(picture);
    for (const auto& [step, isFront] : kSides)
        tapAt(step, isFront);
    const SdkModel& record = *stage.d().sdkModel;
    EXPECT_TRUE(record.base64_idFrontImage && record.base64_idBackImage && record.base64_selfieImage);
    EXPECT_FALSE(record.autoCropped_idFrontImage || record.base64_autoCropped_idFrontImage);
    EXPECT_FALSE(record.autoCropped_idBackImage || record.base64_autoCropped_idBackImage);
    EXPECT_FALSE(record.autoCropped_selfieImage || record.base64_autoCropped_selfieImage);
}

} // namespace
} // namespace kelvara::test
