#include "Kelvara/ImageCatalog.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Kelvara/ScanAreaMapping.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/CIContext.h"

namespace kelvara {

void QorvelKycViewPrivate::handleRectanglesRequest(const VNRequest& request, const std::optional<VNError>&)
{
    const auto* observations = request.resultsAs<VNRectangleObservation>();
    if (!observations || observations->empty())
        return;
    const std::optional<CIImage> image = inputCIImage.load();
    if (!image || !inputCGImage.load())
        return;
    const VNRectangleObservation& card = observations->front();
    const QSizeF size = image->extent().size();
    // Observations and filters both count from the lower left: no flip is needed.
    const std::optional<CIImage> corrected = image->applyingFilter(QStringLiteral("CIPerspectiveCorrection"),
        { { QStringLiteral("inputTopLeft"), scaled(card.topLeft, size) },
            { QStringLiteral("inputTopRight"), scaled(card.topRight, size) },
            { QStringLiteral("inputBottomLeft"), scaled(card.bottomLeft, size) },
            { QStringLiteral("inputBottomRight"), scaled(card.bottomRight, size) } });
    if (!corrected)
        return;
    std::optional<QImage> rendered = CIContext::shared().createCGImage(*corrected, corrected->extent());
    if (!rendered)
        return;
    onMainForThisSide([this, cut = std::move(*rendered)] { didDetectCardImage(cut); });
}

void QorvelKycViewPrivate::didDetectCardImage(const QImage& image)
{
    checkRectangle = true;
    updateScanArea();
    capturedImage = UIImage(image);
}

void QorvelKycViewPrivate::updateScanArea()
{
    if (selectedViewType == ViewType::idPhoto) {
        const bool ready = checkRectangle && ((isFront && checkFace) || (!isFront && checkMrz && !checkFace));
        onMain([this, ready, seen = side] {
            if (seen == side)
                updateOverlay(cutoutView->firstSublayer(), ready);
        });
    } else if (selectedViewType == ViewType::selfie) {
        onMain([this, ready = checkFace.load(), seen = side] {
            if (seen == side)
                updateOverlay(cutoutSelfieView->firstSublayer(), ready);
        });
    }
}

void QorvelKycViewPrivate::updateOverlay(ShapeLayer* border, bool ready)
{
    if (border)
        border->setStrokeColor(ready ? cameraColor : QColor(Qt::white));
    takePhotoButton->setBackgroundImage(
        q->getMyImage(ready ? QStringLiteral("camera_button_on") : QStringLiteral("camera_button_off")));
    if (ready)
        announceReady();
    takePhotoButton->setEnabled(ready); // last: who hears of it may have the view deleted
}

QRectF QorvelKycViewPrivate::cutoutRect(const CaptureGeometry& geometry, const QImage& image)
{
    if (!geometry.cutoutRect)
        fatalError("The card's cut-out was asked for before the overlay was drawn.");
    return scanAreaInFrame(*geometry.cutoutRect, geometry, image.size());
}

QImage QorvelKycViewPrivate::documentImage(const CaptureGeometry& geometry, const QImage& image)
{
    return cropping(image, cutoutRect(geometry, image)).value_or(image);
}

UIImage QorvelKycViewPrivate::enlargedDocumentImage(const CaptureGeometry& geometry, const QImage& image)
{
    const std::optional<QImage> cut = cropping(image, enlargedScanArea(cutoutRect(geometry, image)));
    if (!cut)
        fatalError("The card's area lies outside the frame.");
    return UIImage(*cut);
}

} // namespace kelvara
