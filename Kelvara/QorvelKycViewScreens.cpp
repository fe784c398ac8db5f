#include "Kelvara/ImageCatalog.h"
#include "Kelvara/QorvelKycView_p.h"

#include <QFont>

namespace kelvara {

namespace {

QFont boldSystemFont(const QWidget* widget, int points)
{
    QFont font = widget->font();
    font.setPixelSize(points);
    font.setBold(true);
    return font;
}

/// A label of as many lines as its text needs.
void initiateLabel(StatementLabel* label, const QString& text, int points)
{
    label->setNumberOfLines(0);
    label->shape(text, boldSystemFont(label, points));
}

void initiateActionButton(ActionButton* button, const QString& title, const QColor& background)
{
    button->setTitle(title);
    button->setBackgroundColor(background);
    button->setAccessibleName(title);
}

void addOrRemove(bool isAdd, std::initializer_list<QWidget*> controls)
{
    for (QWidget* control : controls) {
        control->setVisible(isAdd);
        if (isAdd)
            control->raise();
    }
}

} // namespace

void QorvelKycViewPrivate::initiateStatement()
{
    initiateLabel(idPhotoLabel,
        QString::fromUtf8("T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz."),
        kStatementSize);
}

void QorvelKycViewPrivate::setCardInstruction(const QString& text)
{
    idPhotoLabel->shape(text, boldSystemFont(idPhotoLabel, kStatementSize));
    layoutScreen();
}

void QorvelKycViewPrivate::initiateFlashButton()
{
    flashButton->setIsOn(false);
    flashButton->setOffImage(q->getMyImage(QStringLiteral("flash-off")));
    flashButton->setOnImage(q->getMyImage(QStringLiteral("flash")));
    flashButton->setIsOn(false);
    flashButton->setAccessibleName(QString::fromUtf8("Flaş"));
    QObject::connect(flashButton, &ToggleButton::clicked, q, &QorvelKycView::flashState);
}

void QorvelKycViewPrivate::initiateTakePhotoButton()
{
    takePhotoButton->setBackgroundImage(q->getMyImage(QStringLiteral("camera_button_off")));
    takePhotoButton->setImage(std::nullopt);
    takePhotoButton->setEnabled(false);
    takePhotoButton->setAccessibleName(QString::fromUtf8("Fotoğraf çek"));
    QObject::connect(takePhotoButton, &CircleButton::clicked, q, &QorvelKycView::analyzeCard);
}

void QorvelKycViewPrivate::initiateNfcReadLabel(const QString& forceText)
{
    QString shown = forceText;
    if (shown.isEmpty())
        shown = hasNfc
            ? QString::fromUtf8("T.C. Kimlik kartınızı telefonun arka kısmına yaklaştırın ve Tara butonuna basın.")
            : QString::fromUtf8("Cihazınızda Nfc desteği bulunmamaktadır. Devam butonuna basarak sürece devam "
                                "edebilirsiniz.");
    initiateLabel(nfcReadLabel, shown, kInformationSize);
    layoutScreen();
}

void QorvelKycViewPrivate::initiateNfcReadButton()
{
    initiateActionButton(nfcReadButton, hasNfc ? QStringLiteral("Tara") : QStringLiteral("Devam"), cameraColor);
    QObject::connect(nfcReadButton, &ActionButton::clicked, q, &QorvelKycView::nfcReadInput);
}

void QorvelKycViewPrivate::initiateInformationNextButton()
{
    initiateActionButton(informationNextButton, QStringLiteral("Devam"), cameraColor);
    QObject::connect(informationNextButton, &ActionButton::clicked, q, &QorvelKycView::informationNextButtonInput);
}

void QorvelKycViewPrivate::initiateInformationLabel(const QString& text)
{
    initiateLabel(informationLabel, text, kInformationSize);
}

void QorvelKycViewPrivate::initiateCloseButton()
{
    closeButton->setBackgroundImage(q->getMyImage(QStringLiteral("cancel")));
    closeButton->setAccessibleName(QString::fromUtf8("Kapat"));
    QObject::connect(closeButton, &IconButton::clicked, q, &QorvelKycView::closeButtonInput);
}

void QorvelKycViewPrivate::initiateFlipImageView()
{
    flipImageView->setImage(q->getMyImage(QStringLiteral("flip_h")));
    flipImageView->setAlpha(0);
}

void QorvelKycViewPrivate::initiateJitsiLabel()
{
    initiateLabel(jitsiLabel, QString::fromUtf8("Birazdan müşteri temsilcisine bağlanacaksınız. \nLütfen bekleyiniz."),
        kInformationSize);
}

void QorvelKycViewPrivate::initiateJitsiButton()
{
    initiateActionButton(jitsiButton, QString::fromUtf8("İptal Et"), cameraColor);
    QObject::connect(jitsiButton, &ActionButton::clicked, q, &QorvelKycView::closeButtonInput);
}

void QorvelKycViewPrivate::add_removeInformationView(bool isAdd)
{
    addOrRemove(isAdd, { informationLabel, informationNextButton });
}

void QorvelKycViewPrivate::add_removeNfcViews(bool isAdd)
{
    addOrRemove(isAdd, { nfcReadLabel, nfcReadButton });
}

void QorvelKycViewPrivate::add_removeJitsiInfoViews(bool isAdd)
{
    addOrRemove(isAdd, { jitsiLabel, jitsiButton });
}

void QorvelKycViewPrivate::add_removeJitsiView(bool isAdd)
{
    addOrRemove(isAdd, { jitsiMeetView });
    if (isAdd)
        layoutScreen();
}

void QorvelKycViewPrivate::add_removeCloseButton(bool isAdd)
{
    addOrRemove(isAdd, { closeButton });
}

void QorvelKycViewPrivate::add_removeCutoutView(bool isAdd)
{
    addOrRemove(isAdd, { cutoutView });
}

void QorvelKycViewPrivate::add_removeCutoutSelfieView(bool isAdd)
{
    addOrRemove(isAdd, { cutoutSelfieView });
}

void QorvelKycViewPrivate::add_removeTakePhotoButton(bool isAdd)
{
    addOrRemove(isAdd, { takePhotoButton });
}

void QorvelKycViewPrivate::add_removeFlashButton(bool isAdd)
{
    addOrRemove(isAdd, { flashButton });
}

void QorvelKycViewPrivate::add_removeIdPhotoLabel(bool isAdd)
{
    addOrRemove(isAdd, { idPhotoLabel });
}

void QorvelKycViewPrivate::add_removeFlipImageView(bool isAdd)
{
    addOrRemove(isAdd, { flipImageView });
}

void QorvelKycViewPrivate::watchOverlays()
{
    // A cut-out is known from the first drawing on and moves with every later one.
    for (DimmingOverlay* overlay :
        { static_cast<DimmingOverlay*>(cutoutView), static_cast<DimmingOverlay*>(cutoutSelfieView) })
        QObject::connect(overlay, &DimmingOverlay::drawn, q, [this] { publishGeometry(); });
}

void QorvelKycViewPrivate::addPreviewLayer()
{
    isPreviewAdded = true;
    q->update();
}

void QorvelKycViewPrivate::removePreviewLayer()
{
    isPreviewAdded = false;
    q->update();
}

} // namespace kelvara
