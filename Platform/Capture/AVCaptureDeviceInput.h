#pragma once

#include <memory>

namespace kelvara {

class AVCaptureDevice;

/// A session's input. A value shared between the view and its session. Main thread.
class AVCaptureInput
{
public:
    virtual ~AVCaptureInput() = default;
};

/// An input fed by a device.
class AVCaptureDeviceInput final : public AVCaptureInput
{
public:
    /// An input for the device; null when the device is null or not connected.
    [[nodiscard]] static std::shared_ptr<AVCaptureDeviceInput> make(std::shared_ptr<AVCaptureDevice> device);

    [[nodiscard]] const std::shared_ptr<AVCaptureDevice>& device() const { return m_device; }

private:
    explicit AVCaptureDeviceInput(std::shared_ptr<AVCaptureDevice> device) : m_device(std::move(device)) { }
    std::shared_ptr<AVCaptureDevice> m_device;
};

} // namespace kelvara
