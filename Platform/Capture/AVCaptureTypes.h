#pragma once

#include "Platform/Foundation/Export.h"

#include <QtGlobal>

namespace kelvara {

/// Where a camera looks. Raw values are the platform's.
enum class AVCaptureDevicePosition { Unspecified = 0, Back = 1, Front = 2 };

/// How the picture's top lies. Raw values are the platform's. `LandscapeRight` is a sensor's own orientation, and the
/// one that an upright device (a webcam, most replay sources) always reports.
enum class AVCaptureVideoOrientation { Portrait = 1, PortraitUpsideDown = 2, LandscapeRight = 3, LandscapeLeft = 4 };

/// How the interface is turned, as the host's window system tells it.
enum class UIInterfaceOrientation {
    Unknown = 0,
    Portrait = 1,
    PortraitUpsideDown = 2,
    LandscapeRight = 3,
    LandscapeLeft = 4
};

/// The video orientation of an interface orientation: the case of the same name; portrait for unknown or any other.
[[nodiscard]] KELVARA_EXPORT AVCaptureVideoOrientation videoOrientation(UIInterfaceOrientation interfaceOrientation);

/// How the preview fills its layer.
enum class AVLayerVideoGravity { Resize, ResizeAspect, ResizeAspectFill };

enum class AVCaptureSessionPreset { High, Photo };

/// "builtInWideAngleCamera" is the only kind the library asks for.
enum class AVCaptureDeviceType { BuiltInWideAngleCamera };

enum class AVMediaType { Video };

} // namespace kelvara
