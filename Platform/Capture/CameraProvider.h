#pragma once

#include "Platform/Capture/AVCaptureTypes.h"
#include "Platform/Foundation/Export.h"

#include <memory>

namespace kelvara {

class AVCaptureDevice;

/// Where cameras come from. Main thread.
class KELVARA_EXPORT CameraProvider
{
public:
    virtual ~CameraProvider() = default;

    /// The default device of a kind and position; null when there is none.
    [[nodiscard]] virtual std::shared_ptr<AVCaptureDevice> defaultDevice(
        AVCaptureDeviceType type, AVMediaType media, AVCaptureDevicePosition position)
        = 0;

    /// The default camera whatever its position (the back camera where there is one); null when there is none.
    [[nodiscard]] virtual std::shared_ptr<AVCaptureDevice> defaultDevice(AVMediaType media) = 0;
};

} // namespace kelvara
