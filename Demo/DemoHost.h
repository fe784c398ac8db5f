#pragma once

#include "Demo/Delivery.h"
#include "Kelvara/QorvelKycView.h"
#include "Platform/Chip/NFCPassportModel.h"

#include <QElapsedTimer>
#include <QList>
#include <QWidget>

#include <optional>

namespace kelvara::demo {

/// A small host application: a window that embeds the view over a dark background and keeps what its delegate is told.
class DemoHost final : public QWidget, public QorvelKycViewDelegate
{
    Q_OBJECT
public:
    DemoHost(const QSize& size, PlatformServices services);

    [[nodiscard]] QorvelKycView& view() { return *m_view; }
    [[nodiscard]] const QList<Delivery>& deliveries() const { return m_deliveries; }
    /// How many of them brought photographs.
    [[nodiscard]] qsizetype photographs() const;
    /// The last selfie; null before one was taken.
    [[nodiscard]] QImage selfie() const;
    [[nodiscard]] qint64 elapsedMilliseconds() const { return m_clock.elapsed(); }

    /// What the card's chip said; absent before it was read.
    [[nodiscard]] const std::optional<NFCPassportModel>& passport() const { return m_passport; }

    /// The record that came with the close button; null before.
    [[nodiscard]] const std::shared_ptr<SdkModel>& record() const { return m_record; }

    /// What the window shows now, at two pixels a point.
    [[nodiscard]] QImage screen();

    void didDetectSdkDataBeforeJitsi(QorvelKycView& view, const std::shared_ptr<SdkModel>& didDetect) override;
    void didCaptureIdFrontPhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64) override;
    void didCaptureIdBackPhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64) override;
    void didCaptureSelfiePhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64) override;
    void didReadNfc(QorvelKycView& view, const NFCPassportModel& didRead) override;
    void didClose(QorvelKycView& view, const std::shared_ptr<SdkModel>& didDetect) override;

Q_SIGNALS:
    /// The video-call step begins; the view waits for a conference.
    void callWanted();
    /// The person left: by the view's close button or by closing the window.
    void closed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void note(const QString& method, const QList<DeliveredPicture>& pictures = {});

    QElapsedTimer m_clock;
    QList<Delivery> m_deliveries;
    std::optional<NFCPassportModel> m_passport;
    std::shared_ptr<SdkModel> m_record;
    QorvelKycView* const m_view;
};

} // namespace kelvara::demo
