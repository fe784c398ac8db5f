#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Kelvara/ScanAreaMapping.h"
#include "Kelvara/SdkModel.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Mrz/MrzLines.h"

#include <QTransform>

namespace kelvara {

namespace {

constexpr double kLeastLineWidth = 0.8; ///< Of the frame's: a zone's lines span the card, labels do not.
constexpr double kMostBandHeight = 0.4; ///< Of the frame's: what is taller holds other text too.

} // namespace

void QorvelKycViewPrivate::handleMrzRequest(const VNRequest& request, const std::optional<VNError>&)
{
    const auto* observations = request.resultsAs<VNTextObservation>();
    if (!observations)
        return;
    const std::optional<QImage> image = inputCGImage.load();
    if (!inputCIImage.load() || !image)
        return;
    const QRectF band = mrzBand(*observations, image->size());
    const std::optional<QImage> cut = cropping(*image, band);
    if (!cut)
        return;
    std::optional<QKMRZResult> result = mrz(*cut);
    if (!result || !result->allCheckDigitsValid)
        return;
    onMainForThisSide([this, band, seenBy = frameGeometry, result = std::move(*result)] {
        const std::optional<QImage> frame = inputCGImage.load();
        const std::optional<CIImage> filterImage = inputCIImage.load();
        if (!frame || !filterImage)
            fatalError("An MRZ was read, yet there is no frame that it could have been read from.");
        // A reading without its picture is none: a view of no size shows nothing that could be cut out, nor does one
        // that was resized while the cut-out was hidden, until that is drawn anew.
        if (!cropping(*frame, enlargedScanArea(cutoutRect(*seenBy, *frame))))
            return;
        const auto scanResult
            = std::make_shared<QKMRZScanResult>(result, enlargedDocumentImage(*seenBy, *frame), services.imageAnalysis);
        didDetectMrzData(*filterImage, band, scanResult);
    });
}

QRectF QorvelKycViewPrivate::mrzBand(const std::vector<VNTextObservation>& lines, const QSizeF& frame)
{
    const QTransform toPixels = QTransform().scale(frame.width(), -frame.height()).translate(0, -1);
    QRectF band;
    for (const VNTextObservation& line : lines) {
        const QRectF rect = toPixels.mapRect(line.boundingBox);
        if (rect.width() > kLeastLineWidth * frame.width())
            band |= rect;
    }
    return band.height() > kMostBandHeight * frame.height() ? QRectF() : band;
}

std::optional<QKMRZResult> QorvelKycViewPrivate::mrz(const QImage& from)
{
    const std::optional<QImage> prepared = preprocessImage(from);
    if (!prepared)
        return std::nullopt;
    const TesseractResult recognised = tesseract.performOCR(UIImage(*prepared));
    const auto* text = std::get_if<TesseractText>(&recognised);
    if (!text)
        return std::nullopt;
    const auto lines = mrzLines(*text);
    if (!lines)
        return std::nullopt;
    return mrzParser.parse(*lines);
}

std::optional<std::vector<MrzLineReading>> QorvelKycViewPrivate::mrzLines(const TesseractText& from)
{
    return kelvara::mrzLines(from.lines);
}

void QorvelKycViewPrivate::didDetectMrzData(
    const CIImage& image, const QRectF&, const std::shared_ptr<QKMRZScanResult>& scanResult)
{
    checkMrz = true;
    updateScanArea();
    sdkModel->mrzInfo = scanResult;
    capturedMrz = getUIImage(image);
    sdkModel->mrzImage = capturedMrz;
}

} // namespace kelvara
