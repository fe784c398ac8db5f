// The real camera code against pretended cameras, which a GStreamer plug-in plugs in and out (see FakeCameras/).

#include "Platform/Capture/QtCameraProvider.h"
#include "Tests/Capture/CaptureRig.h"

#include <QDir>
#include <QFile>
#include <QMediaDevices>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using testing::ElementsAre;

/// Where the list of pretended cameras lies. Told to the plug-in before anything can have loaded it.
QString listPath()
{
    static const QTemporaryDir folder;
    return folder.filePath(QStringLiteral("cameras"));
}

[[maybe_unused]] const bool told = [] {
#ifdef KELVARA_FAKE_CAMERAS_FOLDER
    qputenv("QT_MEDIA_BACKEND", "gstreamer");
    qputenv("GST_PLUGIN_PATH", KELVARA_FAKE_CAMERAS_FOLDER);
    qputenv("GST_REGISTRY", QFile::encodeName(listPath() + QStringLiteral(".registry")));
    qputenv("KELVARA_FAKE_CAMERAS", QFile::encodeName(listPath()));
#endif
    return true;
}();

class QtCameraTest : public testing::Test
{
protected:
    void SetUp() override
    {
#ifndef KELVARA_FAKE_CAMERAS_FOLDER
        GTEST_SKIP() << "built without GStreamer's headers or test picture: no pretended cameras";
#endif
        provider.assign(AVCaptureDevicePosition::Back, QStringLiteral("Webcam"));
        provider.assign(AVCaptureDevicePosition::Front, QStringLiteral("Other"));
    }

    void TearDown() override
    {
        plug("");
        EXPECT_TRUE(
            waitFor([&] { return !device(AVCaptureDevicePosition::Back) && !device(AVCaptureDevicePosition::Front); }));
    }

    static void plug(const QByteArray& lines)
    {
        // Renamed into place, so that the plug-in never reads half a list.
        QFile file(listPath() + QStringLiteral(".new"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
        file.close();
        QFile::remove(listPath());
        ASSERT_TRUE(file.rename(listPath()));
    }

    std::shared_ptr<AVCaptureDevice> device(AVCaptureDevicePosition position)
    {
        return provider.defaultDevice(AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, position);
    }

    QtCameraProvider provider;
};

QRgb middle(const CVPixelBuffer& picture)
{
    return picture.baseAddress() ? imageOf(picture).pixel(picture.width() / 2, picture.height() / 2) : 0U;
}

bool isNear(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b)) < 24;
}

TEST_F(QtCameraTest, DeliversSwitchesAndSurvivesUnplugging)
{
    plug("Webcam NV12 red\nOther YUY2 blue\n");
    ASSERT_TRUE(
        waitFor([&] { return device(AVCaptureDevicePosition::Back) && device(AVCaptureDevicePosition::Front); }));
    const auto back = device(AVCaptureDevicePosition::Back);
    const auto front = device(AVCaptureDevicePosition::Front);
    EXPECT_EQ(device(AVCaptureDevicePosition::Back), back) << "asked again, the same device";
    EXPECT_EQ(provider.defaultDevice(AVMediaType::Video), back);
    EXPECT_EQ(back->localizedName(), QStringLiteral("Webcam"));
    EXPECT_EQ(front->position(), AVCaptureDevicePosition::Front);

    Rig rig(back);
    rig.session->startRunning();
    ASSERT_TRUE(rig.session->isRunning());
    ASSERT_TRUE(rig.delegate.waitForFrames(3));
    EXPECT_EQ(rig.delegate.newest().size(), QSize(320, 240));
    EXPECT_TRUE(isNear(middle(rig.delegate.newest()), 0xffff0000)) << std::hex << middle(rig.delegate.newest());

    rig.switchTo(front);
    ASSERT_TRUE(waitFor([&] { return isNear(middle(rig.delegate.newest()), 0xff0000ff); }));
    EXPECT_TRUE(rig.preview->connection()->isVideoMirrored());

    rig.session->stopRunning();
    rig.queue->drain();
    const int before = rig.delegate.count();
    waitFor([turns = 0]() mutable { return ++turns > 50; });
    EXPECT_EQ(rig.delegate.count(), before) << "nothing comes after the stop";

    rig.switchTo(back);
    rig.session->startRunning();
    ASSERT_TRUE(rig.delegate.waitForFrames(2));
    plug("Other YUY2 blue\n");
    ASSERT_TRUE(waitFor([&] { return !back->isConnected(); }));
    EXPECT_FALSE(rig.session->isRunning());
    EXPECT_EQ(AVCaptureDeviceInput::make(back), nullptr);
    EXPECT_EQ(device(AVCaptureDevicePosition::Back), nullptr);
    plug("Webcam NV12 green\nOther YUY2 blue\n");
    ASSERT_TRUE(waitFor([&] { return rig.session->isRunning(); }));
    ASSERT_TRUE(waitFor([&] { return isNear(middle(rig.delegate.newest()), 0xff00ff00); }));
    EXPECT_EQ(device(AVCaptureDevicePosition::Back), back);
    rig.session->stopRunning();
    EXPECT_THAT(rig.told, ElementsAre(true, false, true, false, true, false));
}

TEST_F(QtCameraTest, OneCameraServesAtBothPositions)
{
    provider.assign(AVCaptureDevicePosition::Front, QStringLiteral("Webcam"));
    plug("Webcam I420 red\n");
    ASSERT_TRUE(waitFor([&] { return device(AVCaptureDevicePosition::Back) != nullptr; }));
    const auto front = device(AVCaptureDevicePosition::Front);
    ASSERT_NE(front, nullptr);
    Rig rig(device(AVCaptureDevicePosition::Back));
    rig.session->startRunning();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(rig.delegate.waitForFrames(2));
        rig.switchTo(front);
        ASSERT_TRUE(rig.delegate.waitForFrames(2));
        EXPECT_TRUE(rig.preview->connection()->isVideoMirrored());
        rig.switchTo(rig.camera);
    }
    EXPECT_THAT(rig.told, ElementsAre(true));
    // Everything goes while frames are coming.
}

} // namespace
} // namespace kelvara::test
