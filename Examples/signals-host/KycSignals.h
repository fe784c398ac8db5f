#pragma once

#include <Kelvara/QorvelKycView.h>
#include <Kelvara/SdkModel.h>
#include <QImage>
#include <QObject>

/// The view's delegate as signals. Everything a signal brings is a value or shared, so that it may also be queued to
/// another thread. Deleting the view in a slot is as safe as in the delegate; connect directly for that to be at once.
class KycSignals final : public QObject, public kelvara::QorvelKycViewDelegate
{
    Q_OBJECT
public:
    using Photo = const kelvara::UIImage&;
    using Record = std::shared_ptr<kelvara::SdkModel>;
    using QObject::QObject;

Q_SIGNALS:
    void frontCaptured(const QImage& photo, const QImage& card);
    void backCaptured(const QImage& photo, const QImage& card);
    void selfieCaptured(const QImage& photo, const QImage& face);
    void chipRead(const QImage& portrait);
    /// The step waits for `QorvelKycView::setJitsiConference`. Connect it queued: at the moment of the signal the view
    /// has not come to the step yet.
    void callAwaited();
    void closed(const std::shared_ptr<kelvara::SdkModel>& record);

private:
    void didCaptureIdFrontPhoto(
        kelvara::QorvelKycView&, Photo image, const QString&, Photo crop, const QString&) override
    {
        Q_EMIT frontCaptured(image, crop);
    }
    void didCaptureIdBackPhoto(
        kelvara::QorvelKycView&, Photo image, const QString&, Photo crop, const QString&) override
    {
        Q_EMIT backCaptured(image, crop);
    }
    void didCaptureSelfiePhoto(
        kelvara::QorvelKycView&, Photo image, const QString&, Photo crop, const QString&) override
    {
        Q_EMIT selfieCaptured(image, crop);
    }
    void didReadNfc(kelvara::QorvelKycView&, const kelvara::NFCPassportModel& chip) override;
    void didDetectSdkDataBeforeJitsi(kelvara::QorvelKycView&, const Record&) override { Q_EMIT callAwaited(); }
    void didClose(kelvara::QorvelKycView&, const Record& record) override { Q_EMIT closed(record); }
};
