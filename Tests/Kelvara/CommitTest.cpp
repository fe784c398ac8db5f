#include "Tests/Support/KycHarness.h"

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;

/// The picture that a base64 text of a PNG stands for.
QImage decoded(const QString& text)
{
    const auto bytes = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return bytes ? QImage::fromData(*bytes, "PNG") : QImage();
}

bool samePixels(const QImage& a, const QImage& b)
{
    return a.convertToFormat(QImage::Format_ARGB32) == b.convertToFormat(QImage::Format_ARGB32);
}

/// Takes front, back and selfie, turning the card in between.
bool shootEverything(Stage& stage)
{
    stage.show(true, true);
    if (!stage.shoot())
        return false;
    settle();
    stage.show(true, false);
    if (!stage.shoot())
        return false;
    stage.show(false, true);
    if (!spinUntil([&] { return stage.d().selectedViewType == selfie; }) || !stage.shoot())
        return false;
    return spinUntil([&] { return stage.d().isFinish; });
}

TEST(Commit, TheWholeFlowReachesTheHost)
{
    Stage stage;
    stage.setSteps({ idPhoto, selfie });
    ASSERT_TRUE(shootEverything(stage));
    settle();
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front", "back", "selfie" }));
    EXPECT_EQ(stage.shownText(), QString::fromUtf8("Süreç tamamlanmıştır."));
    for (const RecordingDelegate::Photo& photo : stage.delegate.photos) {
        EXPECT_FALSE(photo.text.contains(QLatin1Char('\n')));
        EXPECT_TRUE(samePixels(decoded(photo.text), photo.image));
        EXPECT_TRUE(samePixels(decoded(photo.cropText), photo.crop));
        EXPECT_LT(photo.crop.size().width(), photo.image.size().width()) << "the crop is a part of the photograph";
    }
    const SdkModel& record = *stage.d().sdkModel;
    EXPECT_EQ(record.base64_autoCropped_idBackImage, stage.delegate.photos[1].cropText);
    EXPECT_EQ(record.base64_selfieImage, stage.delegate.photos[2].text);
    EXPECT_FALSE(record.mrzInfo || record.nfcData || record.mrzImage);

    QTest::mouseClick(stage.d().closeButton, Qt::LeftButton);
    EXPECT_EQ(stage.delegate.calls.back(), QStringLiteral("close"));
    EXPECT_EQ(stage.delegate.record, stage.d().sdkModel);
}

TEST(Commit, WithoutADelegateTheFlowStillRunsToItsEnd)
{
    Stage stage;
    stage.view->setDelegate(nullptr);
    stage.setSteps({ idPhoto, selfie });
    EXPECT_TRUE(shootEverything(stage));
    EXPECT_TRUE(stage.d().sdkModel->base64_autoCropped_selfieImage);
}

TEST(Commit, TheFrontTapTurnsToTheBackAndForgetsWhatWasSeen)
{
    Stage stage;
    stage.setSteps({ idPhoto });
    stage.show(true, true);
    ASSERT_TRUE(stage.shoot());
    EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
    EXPECT_TRUE(stage.shownText().startsWith(QString::fromUtf8("T.C Kimlik Kartınızın arka yüzünü")));
    EXPECT_GT(stage.d().flipImageView->property("alpha").toDouble(), 0.99);
    EXPECT_EQ(stage.d().selectedViewType, idPhoto);
    EXPECT_FALSE(stage.d().isFront);
    // The front still lies there: its face keeps the back from being ready, however long it is seen.
    const int before = stage.device.eyes.told->performed;
    ASSERT_TRUE(spinUntil([&] { return stage.device.eyes.told->performed > before + 20; }));
    EXPECT_TRUE(stage.d().checkRectangle);
    EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
    // A face seen on the back blocks until the next tick clears it and none is seen again.
    stage.show(true, false);
    stage.view->runTimedCode();
    ASSERT_TRUE(stage.shoot());
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front", "back" }));
}

TEST(Commit, ReadinessEndsWithTheTickAfterTheCardIsGone)
{
    Stage stage;
    stage.setSteps({ idPhoto });
    stage.show(true, true);
    const QAbstractButton* shutter = stage.d().takePhotoButton;
    ASSERT_TRUE(spinUntil([&] { return shutter->isEnabled(); }));
    EXPECT_EQ(stage.d().cutoutView->firstSublayer()->strokeColor(), stage.d().cameraColor);
    stage.show(false, false);
    EXPECT_TRUE(spinUntil([&] { return !shutter->isEnabled(); }, 3000)) << "the 2-second timer clears it";
    EXPECT_EQ(stage.d().cutoutView->firstSublayer()->strokeColor(), QColor(Qt::white));
}

TEST(Commit, BackWaitsForTheMrzWhereTheChipNeedsIt)
{
    Device device = Device::phone();
    device.hasNfc = true;
    Stage stage(device);
    stage.setSteps({ idPhoto });
    stage.show(true, true);
    ASSERT_TRUE(stage.shoot());
    stage.show(true, false);
    stage.view->runTimedCode();
    ASSERT_TRUE(spinUntil([&] { return stage.d().checkRectangle.load(); }));
    settle();
    EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
    EXPECT_FALSE(stage.d().checkMrz);
}

TEST(Commit, ADoubleTapTakesOnePhotographOnEverySide)
{
    Stage stage;
    stage.setSteps({ idPhoto, selfie });
    QAbstractButton* shutter = stage.d().takePhotoButton;
    const auto tapTwice = [&] {
        if (!spinUntil([&] { return shutter->isEnabled(); }))
            return false;
        QTest::mouseClick(shutter, Qt::LeftButton);
        QTest::mouseClick(shutter, Qt::LeftButton);
        QTest::mouseDClick(shutter, Qt::LeftButton);
        return true;
    };
    stage.show(true, true);
    ASSERT_TRUE(tapTwice());
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front" }));
    stage.show(true, false);
    stage.view->runTimedCode();
    ASSERT_TRUE(tapTwice());
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front", "back" }));
    stage.show(false, true);
    ASSERT_TRUE(spinUntil([&] { return stage.d().selectedViewType == selfie; }));
    ASSERT_TRUE(tapTwice());
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front", "back", "selfie" }));
}

TEST(Commit, OtherStepsOnlySpinTheShutter)
{
    Stage stage;
    stage.setSteps({ nfcRead });
    QMetaObject::invokeMethod(stage.view, "analyzeCard");
    settle();
    EXPECT_TRUE(stage.delegate.calls.isEmpty());
    EXPECT_EQ(stage.d().selectedViewType, nfcRead);
}

} // namespace
} // namespace kelvara::test
