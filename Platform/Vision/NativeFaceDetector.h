#pragma once

#include "Platform/Vision/VisionDetectors.h"

namespace kelvara
{

/// The library's own face detector. Returns at once; its model is loaded in the background, once a process.
[[nodiscard]] std::shared_ptr<const FaceDetector> makeNativeFaceDetector();

} // namespace kelvara
