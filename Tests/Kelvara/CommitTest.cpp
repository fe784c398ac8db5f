#include "Kelvara/SdkModel.h"
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

/// Where the results of one side stand in the record.
struct Side
{
    std::optional<UIImage> SdkModel::*image;
    std::optional<QString> SdkModel::*text;
    std::optional<UIImage> SdkModel::*crop;
    std::optional<QString> SdkModel::*cropText;
};

constexpr Side kFrontSide { &SdkModel::idFrontImage, &SdkModel::base64_idFrontImage,
    &SdkModel::autoCropped_idFrontImage, &SdkModel::base64_autoCropped_idFrontImage };
constexpr Side kBackSide { &SdkModel::idBackImage, &SdkModel::base64_idBackImage, &SdkModel::autoCropped_idBackImage,
    &SdkModel::base64_autoCropped_idBackImage };
constexpr Side kSelfieSide { &SdkModel::selfieImage, &SdkModel::base64_selfieImage, &SdkModel::autoCropped_selfieImage,
    &SdkModel::base64_autoCropped_selfieImage };

/// The record holds of a side what the host was handed.
bool holds(const SdkModel& record, const Side& side, const RecordingDelegate::Photo& photo)
{
    const auto& image = record.*side.image;
    const auto& crop = record.*side.crop;
    return image && crop && QImage(*image) == QImage(photo.image) && QImage(*crop) == QImage(photo.crop)
        && record.*side.text == photo.text && record.*side.cropText == photo.cropText;
}

bool holdsNothing(const SdkModel& record, const Side& side)
{
    return !(record.*side.image || record.*side.text || record.*side.crop || record.*side.cropText);
}

QString tr8(const char* text)
{
    return QString::fromUtf8(text);
}

constexpr auto kTurnToBack = "T.C Kimlik Kartınızın arka yüzünü yukarıda belirtilen alan içerisine yerleştirerek "
                             "fotoğraf çekme butonuna basınız.";
constexpr auto kTurnToFront = "T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştirerek "
                              "fotoğraf çekme butonuna basınız.";

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
    EXPECT_TRUE(holds(record, kFrontSide, stage.delegate.photos[0]));
    EXPECT_TRUE(holds(record, kBackSide, stage.delegate.photos[1]));
    EXPECT_TRUE(holds(record, kSelfieSide, stage.delegate.photos[2]));
    EXPECT_FALSE(record.mrzInfo || record.nfcData || record.mrzImage);

    QTest::mouseClick(stage.d().closeButton, Qt::LeftButton);
    EXPECT_EQ(stage.delegate.calls.back(), QStringLiteral("close"));
    EXPECT_EQ(stage.delegate.record, stage.d().sdkModel);
}

TEST(Commit, ARecordHoldsNothingOfStepsThatDidNotRun)
{
    Stage stage;
    bool told = false;
    stage.delegate.during = [&](QorvelKycView&, const QString& call) {
        if (call != QLatin1String("jitsi"))
            return;
        told = true;
        const SdkModel& record = *stage.delegate.record;
        EXPECT_TRUE(holds(record, kSelfieSide, stage.delegate.photos.back()));
        EXPECT_TRUE(holdsNothing(record, kFrontSide) && holdsNothing(record, kBackSide));
        EXPECT_FALSE(record.mrzInfo || record.mrzImage || record.nfcData);
    };
    stage.setSteps({ selfie, jitsi });
    stage.show(false, true);
    ASSERT_TRUE(stage.shoot());
    EXPECT_TRUE(told);
}

TEST(Commit, ARepeatedCardStepTakesTheFrontAnew)
{
    Stage stage;
    stage.setSteps({ idPhoto, idPhoto });
    stage.show(true, true);
    ASSERT_TRUE(stage.shoot());
    EXPECT_EQ(stage.shownText(), tr8(kTurnToBack));
    settle();
    stage.show(true, false);
    ASSERT_TRUE(stage.shoot());
    EXPECT_EQ(stage.shownText(), tr8(kTurnToFront));
    EXPECT_TRUE(stage.d().isFront);
    settle();
    QImage other(270, 480, QImage::Format_RGB32);
    other.fill(Qt::white);
    stage.device.back->setSource(ReplaySource::still(other));
    ASSERT_TRUE(spinUntil([&] { return stage.d().inputCGImage.load()->pixelColor(9, 9) == Qt::white; }));
    stage.show(true, true);
    ASSERT_TRUE(stage.shoot());
    EXPECT_EQ(stage.delegate.calls, (QStringList { "front", "back", "front" }));
    EXPECT_EQ(QImage(stage.delegate.photos.back().image).pixelColor(9, 9), QColor(Qt::white));
    EXPECT_TRUE(holds(*stage.d().sdkModel, kFrontSide, stage.delegate.photos.back()));
    EXPECT_TRUE(holds(*stage.d().sdkModel, kBackSide, stage.delegate.photos[1]));
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
    EXPECT_EQ(stage.shownText(), tr8(kTurnToBack));
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
    const CircleButton* shutter = stage.d().takePhotoButton;
    ASSERT_TRUE(spinUntil([&] { return shutter->isEnabled(); }));
    EXPECT_EQ(shutter->backgroundImage()->name(), "camera_button_on");
    EXPECT_EQ(stage.d().cutoutView->firstSublayer()->strokeColor(), stage.d().cameraColor);
    stage.show(false, false);
    EXPECT_TRUE(spinUntil([&] { return !shutter->isEnabled(); }, 3000)) << "the 2-second timer clears it";
    EXPECT_EQ(shutter->backgroundImage()->name(), "camera_button_off");
    EXPECT_EQ(stage.d().cutoutView->firstSublayer()->strokeColor(), QColor(Qt::white));
}

TEST(Commit, TheBackIsReadyOnlyWhileItsCardIsSeen)
{
    Stage stage;
    stage.d().isFront = false;
    stage.setSteps({ idPhoto });
    stage.show(true, false);
    const QAbstractButton* shutter = stage.d().takePhotoButton;
    ASSERT_TRUE(spinUntil([&] { return shutter->isEnabled(); }));
    stage.show(false, false);
    stage.d().videoQueue.drain(); // a frame that still saw the card
    settle();
    stage.view->runTimedCode();
    settle();
    EXPECT_FALSE(stage.d().checkRectangle);
    EXPECT_FALSE(shutter->isEnabled());
}

TEST(Commit, ASideBeginsWithNothingSeen)
{
    Stage stage;
    stage.setSteps({ nfcRead }); // where no frame is looked at
    stage.d().videoQueue.drain();
    QorvelKycViewPrivate& d = stage.d();
    d.checkFace = d.checkMrz = d.checkRectangle = true;
    d.startSide();
    settle();
    EXPECT_FALSE(d.checkFace);
    EXPECT_FALSE(d.checkMrz);
    EXPECT_FALSE(d.checkRectangle);
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

} // namespace
} // namespace kelvara::test
