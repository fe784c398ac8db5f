#pragma once

#include <Kelvara/QorvelKycView.h>
#include <QPointer>
#include <QQuickItem>

/// The view as a QML item, in a scene that a `QQuickWidget` shows: the widget lies over the scene, where the item is.
/// Like every widget it is drawn above all items, so nothing of the scene can overlap it.
class KycItem : public QQuickItem, public kelvara::QorvelKycViewDelegate
{
    Q_OBJECT
    /// The steps by name: "idPhoto", "selfie", "nfcRead", "jitsi".
    Q_PROPERTY(QStringList steps READ steps WRITE setSteps NOTIFY stepsChanged)

public:
    explicit KycItem(QQuickItem* parent = nullptr);
    ~KycItem() override;

    [[nodiscard]] QStringList steps() const { return m_steps; }
    void setSteps(const QStringList& steps);

Q_SIGNALS:
    void stepsChanged();
    /// "front", "back", "selfie" or "chip".
    void captured(const QString& what);
    void callAwaited();
    void closed();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    using Photo = const kelvara::UIImage&;
    using Record = std::shared_ptr<kelvara::SdkModel>;
    void didCaptureIdFrontPhoto(kelvara::QorvelKycView&, Photo, const QString&, Photo, const QString&) override;
    void didCaptureIdBackPhoto(kelvara::QorvelKycView&, Photo, const QString&, Photo, const QString&) override;
    void didCaptureSelfiePhoto(kelvara::QorvelKycView&, Photo, const QString&, Photo, const QString&) override;
    void didReadNfc(kelvara::QorvelKycView&, const kelvara::NFCPassportModel&) override;
    void didDetectSdkDataBeforeJitsi(kelvara::QorvelKycView&, const Record&) override;
    void didClose(kelvara::QorvelKycView&, const Record&) override;

    void place();

    QStringList m_steps;
    QPointer<kelvara::QorvelKycView> m_view; ///< A child of the widget that shows the scene.
};
