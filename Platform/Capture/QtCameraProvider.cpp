#include "Platform/Capture/QtCameraProvider.h"

#include "Platform/Capture/CameraChoice.h"
#include "Platform/Capture/QtCamera.h"

#include <QCameraDevice>
#include <QMediaDevices>

#include <algorithm>
#include <vector>

namespace kelvara {

namespace {

AVCaptureDevicePosition positionOf(const QCameraDevice& camera)
{
    switch (camera.position()) {
    case QCameraDevice::BackFace:
        return AVCaptureDevicePosition::Back;
    case QCameraDevice::FrontFace:
        return AVCaptureDevicePosition::Front;
    case QCameraDevice::UnspecifiedPosition:
        break;
    }
    return AVCaptureDevicePosition::Unspecified;
}

std::vector<CameraDescription> pluggedCameras()
{
    std::vector<CameraDescription> cameras;
    for (const QCameraDevice& camera : QMediaDevices::videoInputs())
        cameras.push_back({ QString::fromUtf8(camera.id()), camera.description(), positionOf(camera) });
    return cameras;
}

} // namespace

struct QtCameraProvider::State
{
    /// Made at the first question: setting up Qt Multimedia takes its time, and many a host brings its own cameras.
    std::unique_ptr<QMediaDevices> devices;
    CameraAssignment assignment { qEnvironmentVariable("KELVARA_BACK_CAMERA"),
        qEnvironmentVariable("KELVARA_FRONT_CAMERA") };
    /// Every device that was handed out; asked again for the same, the same object is handed out.
    std::vector<std::shared_ptr<QtCamera>> handedOut;

    void watch()
    {
        if (devices)
            return;
        devices = std::make_unique<QMediaDevices>();
        QObject::connect(devices.get(), &QMediaDevices::videoInputsChanged, devices.get(), [this] { tell(); });
    }

    void tell()
    {
        const std::vector<CameraDescription> cameras = pluggedCameras();
        // A copy: whoever hears of it may ask for another camera.
        const auto told = handedOut;
        for (const auto& camera : told)
            camera->setPlugged(std::any_of(cameras.begin(), cameras.end(),
                [&](const CameraDescription& plugged) { return plugged.id == camera->uniqueID(); }));
    }

    std::shared_ptr<AVCaptureDevice> device(AVCaptureDevicePosition position)
    {
        watch();
        const std::vector<CameraDescription> cameras = pluggedCameras();
        const auto choice = chooseCamera(cameras, position, assignment);
        if (!choice)
            return nullptr;
        const CameraDescription& chosen = cameras[*choice];
        for (const auto& camera : handedOut)
            if (camera->uniqueID() == chosen.id && camera->position() == position)
                return camera;
        const bool back = position == AVCaptureDevicePosition::Back;
        handedOut.push_back(std::make_shared<QtCamera>(
            chosen.id.toUtf8(), chosen.name, position, back ? std::optional<LedTorch>(std::in_place) : std::nullopt));
        return handedOut.back();
    }
};

QtCameraProvider::QtCameraProvider() : d(std::make_unique<State>()) { }

QtCameraProvider::~QtCameraProvider() = default;

std::shared_ptr<QtCameraProvider> QtCameraProvider::shared()
{
    // Never destroyed: Qt Multimedia must not be torn down after the application object.
    static auto* const provider = new std::shared_ptr<QtCameraProvider>(std::make_shared<QtCameraProvider>());
    return *provider;
}

void QtCameraProvider::assign(AVCaptureDevicePosition position, const QString& name)
{
    if (position == AVCaptureDevicePosition::Back)
        d->assignment.back = name;
    else if (position == AVCaptureDevicePosition::Front)
        d->assignment.front = name;
}

std::shared_ptr<AVCaptureDevice> QtCameraProvider::defaultDevice(
    AVCaptureDeviceType, AVMediaType media, AVCaptureDevicePosition position)
{
    if (position == AVCaptureDevicePosition::Unspecified)
        return defaultDevice(media);
    return d->device(position);
}

std::shared_ptr<AVCaptureDevice> QtCameraProvider::defaultDevice(AVMediaType)
{
    auto back = d->device(AVCaptureDevicePosition::Back);
    return back ? back : d->device(AVCaptureDevicePosition::Front);
}

} // namespace kelvara
