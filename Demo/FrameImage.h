#pragma once

#include "Platform/Capture/CMSampleBuffer.h"

#include <QImage>

namespace kelvara::demo {

/// The delivery's picture over the camera's own bytes, which it keeps alive; null for a delivery without one.
[[nodiscard]] QImage frameImage(const CMSampleBuffer& delivery);

} // namespace kelvara::demo
