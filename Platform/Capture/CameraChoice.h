#pragma once

#include "Platform/Capture/AVCaptureTypes.h"

#include <QString>

#include <optional>
#include <span>

namespace kelvara {

/// What a system tells of one of its cameras. Internal.
struct CameraDescription
{
    QString id;
    QString name;
    AVCaptureDevicePosition position = AVCaptureDevicePosition::Unspecified;
};

/// Cameras chosen by name or identifier; empty: chosen by rule. Internal.
struct CameraAssignment
{
    QString back;
    QString front;
};

/// Which of the system's cameras serves as back or front camera, as an index; absent when none does. The rule stands
/// with `QtCameraProvider`. Internal; any thread.
[[nodiscard]] std::optional<std::size_t> chooseCamera(
    std::span<const CameraDescription> cameras, AVCaptureDevicePosition position, const CameraAssignment& assignment);

} // namespace kelvara
