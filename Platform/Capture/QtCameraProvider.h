#pragma once

#include "Platform/Capture/CameraProvider.h"

#include <QString>

#include <memory>

namespace kelvara {

/// The device's real cameras, through Qt Multimedia. Main thread.
///
/// Cameras that say where they look serve as what they say. Webcams do not: the first of unknown position serves as
/// back camera, the second as front, and one webcam alone as both. `assign` or the environment variables
/// KELVARA_BACK_CAMERA and KELVARA_FRONT_CAMERA choose a device by its description or identifier instead; while no such
/// device is plugged in, that position has none. A device keeps working without its provider, but then hears of no
/// unplugging.
class QtCameraProvider final : public CameraProvider
{
public:
    QtCameraProvider();
    ~QtCameraProvider() override;

    /// The process's one provider.
    [[nodiscard]] static std::shared_ptr<QtCameraProvider> shared();

    /// Chooses the device whose description or identifier is `name` for a position; an empty name chooses by rule.
    void assign(AVCaptureDevicePosition position, const QString& name);

    [[nodiscard]] std::shared_ptr<AVCaptureDevice> defaultDevice(
        AVCaptureDeviceType type, AVMediaType media, AVCaptureDevicePosition position) override;
    [[nodiscard]] std::shared_ptr<AVCaptureDevice> defaultDevice(AVMediaType media) override;

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
