#pragma once

#include "Platform/Capture/CVPixelBuffer.h"

#include <QImage>

#include <optional>

namespace kelvara {

/// A camera picture as a bitmap in `Format_ARGB32_Premultiplied` over the buffer's very bytes, which it keeps alive.
/// Absent for a buffer without bytes, of no size, with rows shorter than its pixels, or of another pixel format. Any
/// thread.
[[nodiscard]] std::optional<QImage> cgImage(const CVPixelBuffer& buffer);

} // namespace kelvara
