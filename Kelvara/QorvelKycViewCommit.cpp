#include "Kelvara/ImageFormat.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Foundation/FatalError.h"

#include <QFont>

namespace kelvara {

namespace {

constexpr auto kTurnToBack = "T.C Kimlik Kartınızın arka yüzünü yukarıda belirtilen alan içerisine yerleştirerek "
                             "fotoğraf çekme butonuna basınız.";
constexpr auto kTurnToFront = "T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştirerek "
                              "fotoğraf çekme butonuna basınız.";

/// Where one side's four results stand in the record.
struct RecordFields
{
    std::optional<UIImage> SdkModel::*image;
    std::optional<UIImage> SdkModel::*cropped;
    std::optional<QString> SdkModel::*imageText;
    std::optional<QString> SdkModel::*croppedText;
};

constexpr RecordFields kFront { &SdkModel::idFrontImage, &SdkModel::autoCropped_idFrontImage,
    &SdkModel::base64_idFrontImage, &SdkModel::base64_autoCropped_idFrontImage };
constexpr RecordFields kBack { &SdkModel::idBackImage, &SdkModel::autoCropped_idBackImage,
    &SdkModel::base64_idBackImage, &SdkModel::base64_autoCropped_idBackImage };
constexpr RecordFields kSelfie { &SdkModel::selfieImage, &SdkModel::autoCropped_selfieImage,
    &SdkModel::base64_selfieImage, &SdkModel::base64_autoCropped_selfieImage };

void store(SdkModel& record, const RecordFields& fields, const std::optional<QImage>& frame,
    const std::optional<UIImage>& cropped)
{
    if (!frame)
        fatalError("A photograph was taken before the camera delivered a frame.");
    // A copy of its own: the frame is a part of a large camera buffer, which should not live as long as the record.
    record.*fields.image = UIImage(frame->copy());
    record.*fields.cropped = cropped;
    const auto texts = pngBase64Pair(record.*fields.image, cropped);
    record.*fields.imageText = texts.first;
    record.*fields.croppedText = texts.second;
}

using CaptureCall
    = void (QorvelKycViewDelegate::*)(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&);

void report(QorvelKycViewDelegate* delegate, CaptureCall call, QorvelKycView& view, const SdkModel& record,
    const RecordFields& fields)
{
    if (!delegate)
        return;
    // Copies: the delegate may delete the view, and with it the record.
    const auto image = record.*fields.image;
    const auto imageText = record.*fields.imageText;
    const auto cropped = record.*fields.cropped;
    const auto croppedText = record.*fields.croppedText;
    if (!image || !imageText || !cropped || !croppedText)
        fatalError("A photograph is to be reported, but one of its images or texts is missing.");
    (delegate->*call)(view, *image, *imageText, *cropped, *croppedText);
}

} // namespace

void QorvelKycViewPrivate::analyzeCard()
{
    // An event loop inside the host's call may bring another tap; the side that it is meant for has not begun.
    if (isCommitting)
        return;
    isCommitting = true;
    const QPointer<QorvelKycView> view(q);
    commit();
    if (view)
        isCommitting = false;
}

void QorvelKycViewPrivate::commit()
{
    takePhotoButton->setBackgroundImage(q->getMyImage(QStringLiteral("camera_button_off")));
    takePhotoButton->setImage(q->getMyImage(QStringLiteral("loading_card")));
    takePhotoButton->rotate();
    // Off until the next readiness: the second tap of a double tap must not find it.
    const QPointer<QorvelKycView> view(q); // who hears of it may have the view deleted
    takePhotoButton->setEnabled(false);
    if (!view)
        return;
    switch (selectedViewType) {
    case ViewType::selfie:
        commitSelfie();
        break;
    case ViewType::idPhoto:
        if (isFront)
            commitFront();
        else
            commitBack();
        break;
    case ViewType::nfcRead:
    case ViewType::jitsi:
        break;
    }
}

void QorvelKycViewPrivate::commitSelfie()
{
    store(*sdkModel, kSelfie, inputCGImage.load(), capturedFace);
    announcer->say(QString::fromUtf8("Selfie çekildi."));
    const QPointer<QorvelKycView> view(q);
    report(delegate(), &QorvelKycViewDelegate::didCaptureSelfiePhoto, *q, *sdkModel, kSelfie);
    if (view)
        getNextViewType();
}

void QorvelKycViewPrivate::commitFront()
{
    flipImageView->flip();
    setCardInstruction(QString::fromUtf8(kTurnToBack));
    store(*sdkModel, kFront, inputCGImage.load(), capturedImage);
    announcer->say(QString::fromUtf8("Kartın ön yüzü çekildi."));
    isFront = false;
    announceScreen();
    startSide();
    report(delegate(), &QorvelKycViewDelegate::didCaptureIdFrontPhoto, *q, *sdkModel, kFront);
}

void QorvelKycViewPrivate::commitBack()
{
    setCardInstruction(QString::fromUtf8(kTurnToFront));
    isFront = true;
    store(*sdkModel, kBack, inputCGImage.load(), capturedImage);
    announcer->say(QString::fromUtf8("Kartın arka yüzü çekildi."));
    announceScreen();
    startSide();
    const QPointer<QorvelKycView> view(q);
    report(delegate(), &QorvelKycViewDelegate::didCaptureIdBackPhoto, *q, *sdkModel, kBack);
    if (view)
        getNextViewType();
}

} // namespace kelvara
