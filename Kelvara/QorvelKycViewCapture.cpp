#include "Kelvara/ConsoleLine.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Capture/AVCaptureDevice.h"
#include "Platform/Capture/CameraProvider.h"
#include "Platform/Foundation/FatalError.h"

namespace kelvara {

namespace {

std::shared_ptr<AVCaptureDevice> wideAngleCamera(const PlatformServices& services, AVCaptureDevicePosition position)
{
    if (!services.cameras)
        return nullptr;
    return services.cameras->defaultDevice(AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, position);
}

} // namespace

void QorvelKycViewPrivate::setupAndStartCaptureSession()
{
    backCamera = wideAngleCamera(services, AVCaptureDevicePosition::Back);
    if (!backCamera) {
        noCameraText = QStringLiteral("no back camera");
        return;
    }
    frontCamera = wideAngleCamera(services, AVCaptureDevicePosition::Front);
    if (!frontCamera) {
        noCameraText = QStringLiteral("no front camera");
        return;
    }
    captureSession = std::make_shared<AVCaptureSession>();
    captureSession->beginConfiguration();
    if (captureSession->canSetSessionPreset(AVCaptureSessionPreset::Photo))
        captureSession->setSessionPreset(AVCaptureSessionPreset::Photo);
    captureSession->setAutomaticallyConfiguresCaptureDeviceForWideColor(true);
    observer = QObject::connect(captureSession.get(), &AVCaptureSession::runningChanged, q,
        [this](bool running) { onMain([this, running] { setScanning(running); }); });
    setupInputs();
    setupPreviewLayer();
    setupOutput();
    captureSession->commitConfiguration();
    captureSession->startRunning();
}

void QorvelKycViewPrivate::setupInputs()
{
    backInput = AVCaptureDeviceInput::make(backCamera);
    if (!backInput) {
        noCameraText = QStringLiteral("could not create input device from back camera");
        return;
    }
    if (!captureSession->canAddInput(backInput)) {
        noCameraText = QStringLiteral("could not add back camera input to capture session");
        return;
    }
    frontInput = AVCaptureDeviceInput::make(frontCamera);
    if (!frontInput) {
        noCameraText = QStringLiteral("could not create input device from front camera");
        return;
    }
    // The front input is only tested; the session starts with the back camera.
    if (captureSession->canAddInput(frontInput))
        captureSession->addInput(backInput);
    else
        noCameraText = QStringLiteral("could not add front camera input to capture session");
}

void QorvelKycViewPrivate::setupPreviewLayer()
{
    videoPreviewLayer = std::make_shared<AVCaptureVideoPreviewLayer>(captureSession.get());
    videoPreviewLayer->setVideoGravity(AVLayerVideoGravity::ResizeAspectFill);
    videoPreviewLayer->setFrame(QRectF(q->rect()));
    QObject::connect(videoPreviewLayer.get(), &AVCaptureVideoPreviewLayer::needsDisplay, q, [this] {
        if (isPreviewAdded)
            q->update();
    });
}

void QorvelKycViewPrivate::setupOutput()
{
    videoDataOutput = std::make_shared<AVCaptureVideoDataOutput>();
    videoDataOutput->setPixelFormat(kCVPixelFormatType_32BGRA);
    videoDataOutput->setAlwaysDiscardsLateVideoFrames(true);
    videoDataOutput->setSampleBufferDelegate(this, &videoQueue);
    if (!captureSession->canAddOutput(videoDataOutput)) {
        noCameraText = QStringLiteral("could not add video output");
        return;
    }
    captureSession->addOutput(videoDataOutput);
    if (AVCaptureConnection* connection = videoDataOutput->firstConnection())
        connection->setVideoOrientation(AVCaptureVideoOrientation::Portrait);
}

void QorvelKycViewPrivate::switchCamera(const std::shared_ptr<AVCaptureInput>& input, bool mirrored)
{
    captureSession->beginConfiguration();
    const auto present = captureSession->inputs(); // a copy: removing changes the session's own
    for (const auto& old : present) {
        if (std::dynamic_pointer_cast<AVCaptureDeviceInput>(old))
            captureSession->removeInput(old);
    }
    if (captureSession->inputs().empty()) {
        if (!input)
            fatalError("The camera input of this step was never made.");
        captureSession->addInput(input);
    }
    if (AVCaptureConnection* connection = videoDataOutput->firstConnection()) {
        connection->setVideoOrientation(AVCaptureVideoOrientation::Portrait);
        connection->setVideoMirrored(mirrored);
    }
    captureSession->commitConfiguration();
}

void QorvelKycViewPrivate::startScanning()
{
    if (!captureSession->inputs().empty())
        captureSession->startRunning();
}

void QorvelKycViewPrivate::stopScanning()
{
    captureSession->stopRunning();
}

void QorvelKycViewPrivate::appDidEnterBackground()
{
    if (!isScanning)
        return;
    isScanningPaused = true;
    stopScanning();
}

void QorvelKycViewPrivate::appWillEnterForeground()
{
    if (!isScanningPaused)
        return;
    isScanningPaused = false;
    startScanning();
}

void QorvelKycViewPrivate::setScanning(bool running)
{
    if (isScanning == running)
        return;
    isScanning = running;
    publishGeometry(); // a camera that came back may lie otherwise
    Q_EMIT q->isScanningChanged(running);
}

void QorvelKycViewPrivate::flashState()
{
    const std::shared_ptr<AVCaptureDevice> device
        = services.cameras ? services.cameras->defaultDevice(AVMediaType::Video) : nullptr;
    if (!device)
        return;
    // Whether there is a torch at all is left to the calls below, which the device then refuses.
    if (!device->lockForConfiguration())
        printLine("aaaa");
    if (device->isTorchActive())
        device->setTorchModeOff();
    else if (!device->setTorchModeOn(1.0F))
        printLine("bbb");
    device->unlockForConfiguration();
}

void QorvelKycViewPrivate::publishGeometry()
{
    auto published = std::make_shared<CaptureGeometry>();
    published->step = selectedViewType;
    published->side = side;
    published->hasNfc = hasNfc;
    published->mapping = videoPreviewLayer->mapping();
    if (const AVCaptureConnection* connection = videoPreviewLayer->connection()) {
        published->previewOrientation = connection->videoOrientation();
        published->cutoutRect = cutoutView->cutoutRect;
        published->cutoutSelfieRect = cutoutSelfieView->overlayFrame;
    }
    geometry.store(std::move(published));
}

} // namespace kelvara
