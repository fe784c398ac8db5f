#include "Kelvara/PixelBufferImage.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Vision/VNImageRequestHandler.h"
#include "Platform/Vision/VisionDetectors.h"

namespace kelvara {

namespace {

constexpr float kMinimumCardAspect = 1.3F;
constexpr float kMaximumCardAspect = 1.6F;
constexpr float kMinimumCardSize = 0.5F;

} // namespace

void QorvelKycViewPrivate::captureOutput(
    AVCaptureVideoDataOutput&, const CMSampleBuffer& sampleBuffer, AVCaptureConnection&)
{
    const std::shared_ptr<const CaptureGeometry> published = geometry.load();
    if (!published || published->side != queueSide)
        return; // taken before the present side or step began
    if (!sampleBuffer.imageBuffer())
        return;
    const std::optional<QImage> frame = cgImage(*sampleBuffer.imageBuffer());
    if (!frame)
        return;

    frameGeometry = published;
    if (published->step == ViewType::idPhoto && published->cutoutRect) {
        inputCGImage.store(documentImage(*published, *frame));
        inputCIImage.store(CIImage(*inputCGImage.load()));
    } else if (published->step == ViewType::selfie && published->cutoutSelfieRect) {
        inputCGImage.store(selfieImage(*published, *frame));
        inputCIImage.store(CIImage(*inputCGImage.load()));
    } else {
        inputCGImage.store(*frame);
    }
    const std::optional<QImage> input = inputCGImage.load();
    if (!input)
        fatalError("A frame was to be analysed, yet there is none.");
    performVisionRequest(*input, CGImagePropertyOrientation::Up);
}

void QorvelKycViewPrivate::performVisionRequest(const QImage& image, CGImagePropertyOrientation orientation)
{
    const std::vector<std::shared_ptr<VNRequest>> requests = createVisionRequests();
    if (requests.empty())
        return;
    VNImageRequestHandler handler(image, orientation, {}, services.imageAnalysis);
    handler.perform(requests); // a frame that cannot be analysed is followed by one that can
}

std::vector<std::shared_ptr<VNRequest>> QorvelKycViewPrivate::createVisionRequests()
{
    std::vector<std::shared_ptr<VNRequest>> requests;
    const ViewType step = frameGeometry->step;
    if (step == ViewType::nfcRead)
        return requests;
    if (step == ViewType::idPhoto) {
        requests.push_back(rectanglesRequest());
        if (frameGeometry->hasNfc)
            requests.push_back(mrzRequest());
        else
            checkMrz = true; // only the chip needs the MRZ
    }
    requests.push_back(facesRequest());
    return requests;
}

std::shared_ptr<VNRequest> QorvelKycViewPrivate::rectanglesRequest()
{
    if (!lazyRectanglesRequest) {
        lazyRectanglesRequest = std::make_shared<VNDetectRectanglesRequest>(
            [this](const VNRequest& request, const std::optional<VNError>& error) {
                handleRectanglesRequest(request, error);
            });
        lazyRectanglesRequest->limits = { .minimumAspectRatio = kMinimumCardAspect,
            .maximumAspectRatio = kMaximumCardAspect,
            .minimumSize = kMinimumCardSize,
            .maximumObservations = 1 };
    }
    return lazyRectanglesRequest;
}

std::shared_ptr<VNRequest> QorvelKycViewPrivate::mrzRequest()
{
    if (!lazyMrzRequest)
        lazyMrzRequest = std::make_shared<VNDetectTextRectanglesRequest>(
            [this](
                const VNRequest& request, const std::optional<VNError>& error) { handleMrzRequest(request, error); });
    return lazyMrzRequest;
}

std::shared_ptr<VNRequest> QorvelKycViewPrivate::facesRequest()
{
    if (!lazyFacesRequest)
        lazyFacesRequest = std::make_shared<VNDetectFaceRectanglesRequest>(
            [this](
                const VNRequest& request, const std::optional<VNError>& error) { handleFacesRequest(request, error); });
    return lazyFacesRequest;
}

void QorvelKycViewPrivate::onMainForThisSide(std::function<void()> block)
{
    onMain([this, seen = frameGeometry->side, block = std::move(block)] {
        if (seen == side)
            block();
    });
}

} // namespace kelvara
