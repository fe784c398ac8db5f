#include "Kelvara/QorvelKycView_p.h"
#include "Kelvara/ScanAreaMapping.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/CIContext.h"

namespace kelvara {

void QorvelKycViewPrivate::handleFacesRequest(const VNRequest& request, const std::optional<VNError>&)
{
    const auto* observations = request.resultsAs<VNFaceObservation>();
    if (!observations || observations->empty())
        return;
    if (!inputCGImage.load())
        return;
    const std::optional<CIImage> image = inputCIImage.load();
    if (!image) {
        if (frameGeometry->step == ViewType::jitsi) // it looks for faces, and cuts out none
            onMainForThisSide([this] { checkFace = true; });
        return;
    }
    const QRectF rect = scaled(observations->front().boundingBox, image->extent().size());
    const CIImage face = image->cropped(rect).oriented(CGImagePropertyOrientation::Up);
    if (face.extent().isEmpty())
        return; // nothing of it lies in the frame
    onMainForThisSide([this, face, rect] { didDetectFaceImage(face, rect); });
}

void QorvelKycViewPrivate::didDetectFaceImage(const CIImage& image, const QRectF&)
{
    checkFace = true;
    updateScanArea();
    capturedFace = getUIImage(image);
}

UIImage QorvelKycViewPrivate::getUIImage(const CIImage& image)
{
    const CIContext context;
    const std::optional<QImage> rendered = context.createCGImage(image, image.extent());
    return rendered ? UIImage(*rendered) : UIImage();
}

QRectF QorvelKycViewPrivate::cutoutSelfieRect(const CaptureGeometry& geometry, const QImage& image)
{
    if (!geometry.cutoutSelfieRect)
        fatalError("The selfie's cut-out was asked for before the overlay was drawn.");
    return scanAreaInFrame(*geometry.cutoutSelfieRect, geometry, image.size());
}

QImage QorvelKycViewPrivate::selfieImage(const CaptureGeometry& geometry, const QImage& image)
{
    return cropping(image, cutoutSelfieRect(geometry, image)).value_or(image);
}

UIImage QorvelKycViewPrivate::enlargedSelfieImage(const CaptureGeometry& geometry, const QImage& image)
{
    const std::optional<QImage> cut = cropping(image, enlargedScanArea(cutoutSelfieRect(geometry, image)));
    if (!cut)
        fatalError("The selfie's area lies outside the frame.");
    return UIImage(*cut);
}

} // namespace kelvara
