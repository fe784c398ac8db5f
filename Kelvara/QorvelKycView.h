#pragma once

#include "Kelvara/QorvelKycViewDelegate.h"
#include "Kelvara/SdkModel.h"
#include "Kelvara/ViewType.h"
#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"
#include "Platform/PlatformServices.h"

#include <QList>
#include <QRectF>
#include <QString>
#include <QVariantMap>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace kelvara {

class QorvelKycViewPrivate;
template<typename T> class LinkedListViewType;

/// The one object a host embeds: a view with a live camera preview that guides a person through the steps it is given
/// and tells its delegate what was captured. Main thread only.
///
///     auto* view = new kelvara::QorvelKycView(window);
///     view->setDelegate(&delegate);                     // not owned; may die first
///     view->setViewTypes({ ViewType::idPhoto, ViewType::selfie });
///
/// The view's own background is clear: put something dark behind it. It may be deleted at any time, inside any call of
/// its delegate too; only while Qt tells of focus moving, of widgets being shown or hidden or of their texts (event
/// filters, `QApplication::focusChanged`, accessibility updates) by `deleteLater()`, as Qt goes on with them. No
/// operation reports an error: what the device lacks is told to the person on the screen, and `isScanning` tells the
/// host whether a camera runs. A device that is there but gives no pictures (a replay camera whose file is missing)
/// shows an empty preview.
class KELVARA_EXPORT QorvelKycView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QList<kelvara::ViewType> viewTypes READ viewTypes WRITE setViewTypes)
    Q_PROPERTY(bool forceNfc READ forceNfc WRITE setForceNfc)
    Q_PROPERTY(bool inJitsi READ inJitsi)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)

public:
    /// A view on the device's own cameras and services.
    explicit QorvelKycView(QWidget* parent = nullptr);
    /// The same with a place in its parent (origin top-left, points).
    explicit QorvelKycView(const QRectF& frame, QWidget* parent = nullptr);
    /// A view on services of the host's choosing, such as a replay camera.
    explicit QorvelKycView(PlatformServices services, QWidget* parent = nullptr);
    QorvelKycView(const QRectF& frame, PlatformServices services, QWidget* parent = nullptr);
    ~QorvelKycView() override;

    /// When true, a device without a contactless reader cannot go on at all, whatever the steps are. Initially false;
    /// looked at whenever a screen is composed.
    [[nodiscard]] bool forceNfc() const;
    void setForceNfc(bool force);

    /// Receiver of the results; borrowed, null when there is none or it has been destroyed.
    [[nodiscard]] QorvelKycViewDelegate* delegate() const;
    void setDelegate(QorvelKycViewDelegate* delegate);

    /// By how much all texts are larger than their ordinary sizes, from 1 (initially) to 3; what lies beyond is taken
    /// to be the nearest of these. For people who have asked their system for larger text: Qt does not tell a widget by
    /// how much, the host knows. Takes effect at once, also on the chip reader's sheet and on what stands over a call.
    /// Texts never lie on a button, nor on an upright view's cut-out: where room is scarce they are smaller than asked
    /// for, but not smaller than ordinary. The sheet's grow with this view's font besides.
    [[nodiscard]] double textScale() const;
    void setTextScale(double scale);

    /// The steps as set. Setting them starts at the first one; an empty list keeps the screen as it is. Completion is
    /// for good: once the end was reached, new steps change nothing on the screen; a new view starts again.
    [[nodiscard]] QList<ViewType> viewTypes() const;
    void setViewTypes(const QList<ViewType>& types);

    /// The steps as the list that the flow walks; rebuilt at every `setViewTypes`. Include LinkedListViewType.h to use
    /// it.
    [[nodiscard]] const LinkedListViewType<ViewType>& viewTypeLinkedList() const;

    /// Whether the camera runs. Follows the session a turn of the event loop later.
    [[nodiscard]] bool isScanning() const;

    /// Starts the camera if there is one to start.
    void startScanning();
    /// Stops the camera, whatever the state.
    void stopScanning();

    // Switch to a step, whether or not it is in the list.
    void showIdPhotoView();
    void showSelfieView();
    void showNfcView();
    /// Tells the delegate (`didDetectSdkDataBeforeJitsi`) and then changes to the video-call step.
    void showJitsiView();

    /// Opens the video call: on the video-call step only, otherwise nothing happens at all. All three strings come from
    /// the host's own server and are handed over as they are. The delegate's `didDetectSdkDataBeforeJitsi` comes before
    /// the step changes, so that a call in there is too early and ignored (unless the video call is the flow's first
    /// step); from the next turn of the event loop on it is right. A second call ends the present conference and opens
    /// another one.
    ///
    /// What goes wrong is told to the person on the screen, and by `didConferenceTerminated`: an address that is none
    /// (`QUrl::StrictMode`; one with blanks, for instance) leaves the conference without a server. While the call lasts
    /// it lies over the step's controls, and with video `isScanning` is false: the call has the camera. It ends with
    /// the step, should the host show another one.
    void setJitsiConference(const QString& url, const QString& room, const QString& token);

    /// From the moment that the conference is joined until it ends.
    [[nodiscard]] bool inJitsi() const;

    /// Called when a conference ends, whoever ended it, with what `JitsiMeetViewDelegate::conferenceTerminated` tells;
    /// it may delete the view. Not called when the view itself goes. Initially absent.
    void setDidConferenceTerminated(std::function<void(const std::optional<QVariantMap>&)> callback);

    /// An image of the library's own resources at this view's pixel ratio; absent for an unknown name.
    [[nodiscard]] std::optional<UIImage> getMyImage(const QString& named) const;

public Q_SLOTS:
    /// What the 2-second timer does: detections older than that no longer count.
    void runTimedCode();

Q_SIGNALS:
    void isScanningChanged(bool isScanning);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private Q_SLOTS:
    // Reached by controls and notifications, by these names.
    void closeButtonInput();
    void informationNextButtonInput();
    void nfcReadInput();
    void analyzeCard();
    void flashState();
    void appWillEnterForeground();
    void appDidEnterBackground();

private:
    friend class QorvelKycViewPrivate;
    std::unique_ptr<QorvelKycViewPrivate> d;
};

} // namespace kelvara
