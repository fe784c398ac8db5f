#include "Platform/Capture/CameraChoice.h"
#include "Platform/Capture/CameraList.h"
#include "Platform/Capture/QtCameraProvider.h"

#include "Platform/Capture/AVCaptureDevice.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvara::test {
namespace {

constexpr auto kBack = AVCaptureDevicePosition::Back;
constexpr auto kFront = AVCaptureDevicePosition::Front;
constexpr auto kUnknown = AVCaptureDevicePosition::Unspecified;

struct CameraRow
{
    const char* name;
    std::vector<AVCaptureDevicePosition> cameras; ///< Identifiers are "0", "1", …; names "camera 0" and so on.
    CameraAssignment assignment;
    int back; ///< -1: none.
    int front;
};

class CameraChoice : public testing::TestWithParam<CameraRow>
{ };

TEST_P(CameraChoice, FollowsTheRule)
{
    std::vector<CameraDescription> cameras;
    for (const auto position : GetParam().cameras) {
        const QString number = QString::number(cameras.size());
        cameras.push_back({ number, QStringLiteral("camera ") + number, position });
    }
    const auto choice = [&](AVCaptureDevicePosition position) {
        const auto index = chooseCamera(cameras, position, GetParam().assignment);
        return index ? static_cast<int>(*index) : -1;
    };
    EXPECT_EQ(choice(kBack), GetParam().back);
    EXPECT_EQ(choice(kFront), GetParam().front);
}

const CameraAssignment kByRule;

INSTANTIATE_TEST_SUITE_P(Rows, CameraChoice,
    testing::Values(CameraRow { "None", {}, kByRule, -1, -1 }, CameraRow { "OneWebcamServesAsBoth", { kUnknown }, kByRule, 0, 0 },
        CameraRow { "TwoWebcams", { kUnknown, kUnknown, kUnknown }, kByRule, 0, 1 },
        CameraRow { "CamerasThatSay", { kFront, kBack, kBack }, kByRule, 1, 0 },
        CameraRow { "OnlyABackCamera", { kBack }, kByRule, 0, -1 }, CameraRow { "OnlyAFrontCamera", { kFront }, kByRule, -1, 0 },
        CameraRow { "AWebcamBesideABackCamera", { kBack, kUnknown }, kByRule, 0, 1 },
        CameraRow { "AWebcamBesideAFrontCamera", { kUnknown, kFront }, kByRule, 0, 1 },
        CameraRow { "ByNameAgainstTheOrder", { kUnknown, kUnknown }, { QStringLiteral("camera 1"), {} }, 1, 0 },
        CameraRow { "ByIdentifier", { kUnknown, kUnknown }, { {}, QStringLiteral("0") }, 1, 0 },
        CameraRow { "ByNameAgainstWhatItSays", { kFront, kUnknown }, { QStringLiteral("camera 0"), {} }, 0, 0 },
        CameraRow { "OneForBothByName", { kUnknown, kUnknown }, { QStringLiteral("1"), QStringLiteral("1") }, 1, 1 },
        CameraRow { "AbsentNameIsNotReplaced", { kUnknown, kUnknown }, { QStringLiteral("other"), {} }, -1, 1 }),
    [](const auto& row) { return row.param.name; });

TEST(CameraList, TellsEachCameraOnce)
{
    CameraList list;
    const auto told = [&](std::initializer_list<const char*> cameras) {
        std::vector<CameraDescription> descriptions;
        for (const char* camera : cameras) { // "<id><name>"
            const QString text = QString::fromLatin1(camera);
            descriptions.push_back({ text.left(1), text.mid(1) });
        }
        QString ids;
        for (const CameraDescription& camera : list.update(descriptions))
            ids += camera.id;
        return ids.toStdString();
    };
    EXPECT_EQ(told({ "0A", "1B" }), "01");
    EXPECT_EQ(told({ "0A", "1B", "2A", "3B" }), "01") << "met twice";
    EXPECT_EQ(told({ "0A", "2A", "3B" }), "0") << "B is unplugged, whatever is left of it";
    EXPECT_EQ(told({ "0A", "2A", "3B", "4B" }), "04");
    EXPECT_EQ(told({ "3B", "4B" }), "4");
    EXPECT_EQ(told({ "3B" }), "");

    list = CameraList();
    EXPECT_EQ(told({ "0A", "1B", "2A", "3C" }), "0123");
    EXPECT_EQ(told({ "0A", "5A" }), "05") << "another of the same make";
    EXPECT_EQ(told({ "xA", "yA" }), "xy") << "not numbered";
}

TEST(QtCameraProvider, AnswersWithoutCameras)
{
    QtCameraProvider provider;
    if (const auto device = provider.defaultDevice(AVMediaType::Video))
        GTEST_SKIP() << "a camera is plugged in: " << device->localizedName().toStdString();
    EXPECT_EQ(provider.defaultDevice(AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, kBack), nullptr);
    EXPECT_EQ(provider.defaultDevice(AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, kFront), nullptr);
}

} // namespace
} // namespace kelvara::test
