#include "Platform/Capture/QtCameraProvider.h"

#include "Platform/Capture/CameraChoice.h"
#include "Platform/Capture/CameraList.h"
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
    // One for the process, as is the list that it corrects.
    static CameraList list;
    std::vector<CameraDescription> told;
    for (const QCameraDevice& camera : QMediaDevices::videoInputs())
        told.push_back({ QString::fromUtf8(camera.id()), camera.description(), positionOf(camera) });
    return list.update(told);
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
        // Queued: the signal may come from within the making of the back end, which must not be asked again then.
        QObject::connect(
            devices.get(), &QMediaDevices::videoInputsChanged, devices.get(), [this] { tell(); }, Qt::QueuedConnection);
    }

    void tell()
    {
        const std::vector<CameraDescription> cameras = pluggedCameras();
        // A copy: whoever hears of it may ask for another camera.
        const auto told = handedOut;
        for (const auto& camera : told)
            camera->setPlugged(find(*camera, cameras));
    }

    /// Whether the camera is plugged in. Some back ends number a camera anew each time it is plugged in: one that
    /// comes back is known by its name.
    bool find(QtCamera& camera, const std::vector<CameraDescription>& cameras) const
    {
        const auto hasId
            = [](const QString& id) { return [&id](const CameraDescription& plugged) { return plugged.id == id; }; };
        if (std::any_of(cameras.begin(), cameras.end(), hasId(camera.uniqueID())))
            return true;
        const auto isItBack = [&](const CameraDescription& plugged) {
            return plugged.name == camera.localizedName()
                && std::none_of(handedOut.begin(), handedOut.end(), [&](const std::shared_ptr<QtCamera>& other) {
                       return other->uniqueID() == plugged.id && other->position() == camera.position();
                   });
        };
        const auto back = std::find_if(cameras.begin(), cameras.end(), isItBack);
        if (back == cameras.end())
            return false;
        camera.setUniqueID(back->id);
        return true;
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
