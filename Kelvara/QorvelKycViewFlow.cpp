#include "Kelvara/QorvelKycView_p.h"

namespace kelvara {

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

constexpr auto kNoFrontCamera
    = "Cihazınızda ön kamera bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kNoBackCamera
    = "Cihazınızda arka kamera bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kNfcRequired
    = "Cihazınızda NFC desteği bulunmamaktadır. Bu kontrol zorunlu tutulduğu için ilerleme yapılamamaktadır.";
constexpr auto kNoSteps = "Sdk içerisine işlem listesi boş gönderilmiştir.";
constexpr auto kFinished = "Süreç tamamlanmıştır.";

} // namespace

void QorvelKycViewPrivate::setViewTypes(const QList<ViewType>& types)
{
    _viewTypes = types;
    viewTypeLinkedList = LinkedListViewType<ViewType>(std::vector<ViewType>(types.begin(), types.end()));
    if (types.isEmpty())
        return;
    selectedViewType = types.front();
    showViewType(selectedViewType);
}

void QorvelKycViewPrivate::showViewType(ViewType viewType)
{
    switch (viewType) {
    case ViewType::idPhoto:
        showIdPhotoView();
        break;
    case ViewType::selfie:
        showSelfieView();
        break;
    case ViewType::nfcRead:
        showNfcView();
        break;
    case ViewType::jitsi:
        showJitsiView();
        break;
    }
}

void QorvelKycViewPrivate::showIdPhotoView()
{
    selectedViewType = ViewType::idPhoto;
    if (noCameraText.isEmpty())
        switchCamera(backInput, false);
    startStep();
}

void QorvelKycViewPrivate::showSelfieView()
{
    selectedViewType = ViewType::selfie;
    if (noCameraText.isEmpty())
        switchCamera(frontInput, true);
    startStep();
}

void QorvelKycViewPrivate::showNfcView()
{
    selectedViewType = ViewType::nfcRead;
    startStep();
}

void QorvelKycViewPrivate::showJitsiView()
{
    if (QorvelKycViewDelegate* host = delegate()) {
        const QPointer<QorvelKycView> view(q);
        const std::shared_ptr<SdkModel> record = sdkModel;
        host->didDetectSdkDataBeforeJitsi(*q, record);
        if (!view)
            return;
    }
    selectedViewType = ViewType::jitsi;
    startStep();
}

void QorvelKycViewPrivate::getNextViewType()
{
    if (viewTypeLinkedList.isEmpty())
        return;
    // The first node that holds the current step counts, so a repeated step always continues after its first place.
    ViewType next = selectedViewType;
    bool found = false;
    for (auto node = viewTypeLinkedList.head(); node; node = node->next) {
        if (found) {
            next = node->value;
            break;
        }
        found = node->value == selectedViewType;
        if (!node->next) {
            isFinish = true;
            onMain([this] { viewChange(); });
        }
    }
    if (next != selectedViewType)
        showViewType(next);
}

void QorvelKycViewPrivate::startSide()
{
    ++side;
    publishGeometry();
    onMain([this] {
        checkFace = false;
        checkMrz = false;
        checkRectangle = false;
        updateScanArea();
        takePhotoButton->setEnabled(false); // last: who hears of it may have the view deleted
    });
    // Frames that wait on the queue were taken before this moment; this block comes after them.
    videoQueue.async([this, begun = side] {
        queueSide = begun;
        inputCIImage.store(std::nullopt); // a crop must not come from the side before
    });
    // At once too, as a tap that waits behind this call was meant for the side before; and last, as above.
    takePhotoButton->setEnabled(false);
}

void QorvelKycViewPrivate::startStep()
{
    const QPointer<QorvelKycView> view(q);
    startSide();
    if (view)
        onMain([this] { viewChange(); });
}

void QorvelKycViewPrivate::viewChange()
{
    ControlButton* const focused = focusedControl();
    const bool showsFocus = focused && focused->showsFocus();
    add_removeInformationView(false);
    add_removeFlipImageView(false);
    add_removeCloseButton(false);
    add_removeCutoutView(false);
    add_removeIdPhotoLabel(false);
    add_removeFlashButton(false);
    add_removeTakePhotoButton(false);
    add_removeCutoutSelfieView(false);
    add_removeNfcViews(false);
    removePreviewLayer();
    settleCall();
    add_removeJitsiInfoViews(false);

    if (!noCameraText.isEmpty() && !frontCamera && selectedViewType == ViewType::selfie)
        showInformation(text(kNoFrontCamera));
    else if (!noCameraText.isEmpty() && !backCamera && selectedViewType == ViewType::idPhoto)
        showInformation(text(kNoBackCamera));
    else if (forceNfc && !hasNfc)
        showInformation(text(kNfcRequired));
    else if (_viewTypes.isEmpty())
        showInformation(text(kNoSteps));
    else if (isFinish)
        showInformation(text(kFinished));
    else {
        switch (selectedViewType) {
        case ViewType::idPhoto:
            addPreviewLayer();
            add_removeCutoutView(true);
            add_removeTakePhotoButton(true);
            add_removeFlashButton(true);
            add_removeIdPhotoLabel(true);
            add_removeFlipImageView(true);
            break;
        case ViewType::selfie:
            addPreviewLayer();
            add_removeCutoutSelfieView(true);
            add_removeTakePhotoButton(true);
            break;
        case ViewType::nfcRead:
            add_removeNfcViews(true);
            break;
        case ViewType::jitsi:
            add_removeJitsiInfoViews(true);
            break;
        }
        add_removeCloseButton(true);
    }
    raiseCall();
    layoutScreen();
    announceScreen();
    settleFocus(focused, showsFocus);
}

void QorvelKycViewPrivate::showInformation(const QString& information)
{
    initiateInformationLabel(information);
    add_removeInformationView(true);
    add_removeCloseButton(true);
}

void QorvelKycViewPrivate::closeButtonInput()
{
    if (QorvelKycViewDelegate* host = delegate()) {
        const std::shared_ptr<SdkModel> record = sdkModel;
        host->didClose(*q, record);
    }
}

void QorvelKycViewPrivate::runTimedCode()
{
    checkFace = false;
    checkRectangle = false;
    updateScanArea();
}

} // namespace kelvara
