#include "Platform/Capture/LedTorch.h"
#include "Platform/Capture/QtCamera.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace kelvara::test {
namespace {

class LedTorchTest : public testing::Test
{
protected:
    void addLight(const QString& name, int brightness, int full)
    {
        ASSERT_TRUE(QDir(root.path()).mkpath(name));
        write(name + QStringLiteral("/brightness"), QByteArray::number(brightness) + '\n');
        write(name + QStringLiteral("/max_brightness"), QByteArray::number(full) + '\n');
    }

    void write(const QString& name, const QByteArray& text)
    {
        QFile file(root.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    [[nodiscard]] int brightness(const QString& name) const
    {
        QFile file(root.filePath(name + QStringLiteral("/brightness")));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : -1;
    }

    QTemporaryDir root;
};

TEST_F(LedTorchTest, LightsEveryTorchAndNothingElse)
{
    addLight(QStringLiteral("white:torch-0"), 0, 200);
    addLight(QStringLiteral("yellow:torch-1"), 0, 7);
    addLight(QStringLiteral("white:flash"), 0, 100);
    addLight(QStringLiteral("input0::capslock"), 1, 1);
    LedTorch torch(root.path());
    EXPECT_TRUE(torch.exists());
    EXPECT_FALSE(torch.isOn());
    EXPECT_TRUE(torch.turnOn(1.0F));
    EXPECT_EQ(brightness(QStringLiteral("white:torch-0")), 200);
    EXPECT_EQ(brightness(QStringLiteral("yellow:torch-1")), 7);
    EXPECT_EQ(brightness(QStringLiteral("white:flash")), 0);
    EXPECT_TRUE(LedTorch(root.path()).isOn()) << "the light is asked, not remembered";
    EXPECT_TRUE(torch.turnOn(0.01F));
    EXPECT_EQ(brightness(QStringLiteral("yellow:torch-1")), 1) << "on is never nothing";
    torch.turnOff();
    EXPECT_FALSE(torch.isOn());
    EXPECT_EQ(brightness(QStringLiteral("input0::capslock")), 1);
    for (const float level : { 0.0F, -1.0F, 1.1F, std::nanf("") })
        EXPECT_FALSE(torch.turnOn(level));
}

TEST_F(LedTorchTest, RefusesWhereNothingCanBeLit)
{
    EXPECT_FALSE(LedTorch(root.path()).exists());
    EXPECT_FALSE(LedTorch(root.filePath(QStringLiteral("missing"))).turnOn(1));
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("white:flash")));
    write(QStringLiteral("white:flash/max_brightness"), "100");
    LedTorch torch(root.path()); // its brightness cannot be written
    EXPECT_TRUE(torch.exists());
    EXPECT_FALSE(torch.turnOn(1));
    EXPECT_FALSE(QFile::exists(root.filePath(QStringLiteral("white:flash/brightness"))));
}

TEST_F(LedTorchTest, ServesACameraThatHasNoneOfItsOwn)
{
    addLight(QStringLiteral("white:flash"), 0, 100);
    {
        QtCamera camera(
            "no such camera", QStringLiteral("Webcam"), AVCaptureDevicePosition::Back, LedTorch(root.path()));
        EXPECT_TRUE(camera.hasTorch());
        EXPECT_TRUE(camera.setTorchModeOn(1));
        EXPECT_TRUE(camera.isTorchActive());
        EXPECT_FALSE(camera.start([](const CMSampleBuffer&) {})) << "there is no such camera";
        camera.stop();
        EXPECT_FALSE(camera.isTorchActive()) << "the camera itself may be kept for long";
        EXPECT_TRUE(camera.setTorchModeOn(1));
    }
    EXPECT_EQ(brightness(QStringLiteral("white:flash")), 0) << "no light stays on behind its camera";
    QtCamera bare("no such camera", QStringLiteral("Webcam"), AVCaptureDevicePosition::Front, std::nullopt);
    EXPECT_FALSE(bare.hasTorch());
    EXPECT_FALSE(bare.setTorchModeOn(1));
    EXPECT_FALSE(bare.isTorchActive());
}

} // namespace
} // namespace kelvara::test
