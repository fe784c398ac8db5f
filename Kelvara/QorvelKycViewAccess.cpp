#include "Kelvara/QorvelKycView_p.h"
#include "Kelvara/ScreenAccessibility.h"

#include <utility>

namespace kelvara {

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// The selfie's screen has no words on it.
constexpr auto kSelfie = "Selfie çekimi. Yüzünüzü ekranın ortasındaki oval alana yerleştiriniz.";
constexpr auto kReady = "Fotoğraf çekmeye hazır.";

} // namespace

void QorvelKycViewPrivate::initiateAccess()
{
    installScreenAccessibility();
    q->setAccessibleName(text("Kimlik doğrulama"));
    cutoutView->setAccessibleName(text("Kartın yerleştirileceği alan"));
    cutoutSelfieView->setAccessibleName(text("Yüzün yerleştirileceği alan"));
    flipImageView->setAccessibleName(text("Kartı çevirin"));
    watchCall(jitsiMeetView);
}

void QorvelKycViewPrivate::announceScreen()
{
    if (jitsiMeetView->isInConference()) // which has words of its own
        return;
    for (const StatementLabel* label : { idPhotoLabel, nfcReadLabel, jitsiLabel, informationLabel }) {
        if (!label->isHidden()) {
            announcer->showScreen(label->text());
            return;
        }
    }
    if (!cutoutSelfieView->isHidden())
        announcer->showScreen(text(kSelfie));
}

void QorvelKycViewPrivate::announceReady()
{
    // Readiness comes and goes with every shake of the hand, and beneath screens without a shutter too.
    if (readySaid == side || !takePhotoButton->isVisibleTo(q))
        return;
    readySaid = side;
    announcer->say(text(kReady));
}

ControlButton* QorvelKycViewPrivate::focusedControl() const
{
    auto* const control = qobject_cast<ControlButton*>(q->window()->focusWidget());
    if (!control || control->parentWidget() != q)
        return nullptr;
    // Whoever pressed the shutter is not on its neighbour, though that has the focus meanwhile.
    return takePhotoButton->awaitsFocus() ? takePhotoButton : control;
}

void QorvelKycViewPrivate::settleFocus(ControlButton* before, bool showsFocus)
{
    if (!before)
        return;
    if (!before->isHidden() && before->isEnabled()) {
        if (focusedControl() != before)
            before->takeFocus(showsFocus);
        return;
    }
    for (ControlButton* main :
        std::initializer_list<ControlButton*> { takePhotoButton, informationNextButton, nfcReadButton, jitsiButton }) {
        if (main->isHidden())
            continue;
        if (!main->isEnabled()) // the shutter, which waits for the camera
            closeButton->takeFocus(showsFocus);
        main->takeFocus(showsFocus);
        return;
    }
    closeButton->takeFocus(showsFocus);
}

void QorvelKycViewPrivate::watchCall(JitsiMeetView* call)
{
    call->setAccessibleName(text("Görüntülü görüşme"));
    QObject::connect(call, &JitsiMeetView::occupied, q,
        [this, token = life.token()] { MainQueue::async(token, [this] { settleFocusOfCall(); }); });
}

void QorvelKycViewPrivate::settleFocusOfCall()
{
    QWidget* covering = nullptr;
    for (JitsiMeetView* call : callViews()) {
        if (call->isOccupied() && !call->isHidden())
            covering = call;
    }
    if (ControlButton* const focused = focusedControl())
        focusBeforeCall = focused->showsFocus();
    const std::optional<bool> showsFocus = std::exchange(focusBeforeCall, std::nullopt);
    for (ControlButton* control : q->findChildren<ControlButton*>(QString(), Qt::FindDirectChildrenOnly))
        control->setFocusPolicy(covering ? Qt::NoFocus : Qt::StrongFocus);
    if (!covering || !showsFocus)
        return;
    for (QWidget* within : covering->findChildren<QWidget*>()) {
        if (within->isVisible() && within->isEnabled() && (within->focusPolicy() & Qt::TabFocus)) {
            within->setFocus(*showsFocus ? Qt::TabFocusReason : Qt::OtherFocusReason);
            return;
        }
    }
    if (ControlButton* const focused = focusedControl())
        focused->clearFocus();
}

} // namespace kelvara
