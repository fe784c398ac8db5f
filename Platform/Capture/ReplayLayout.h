#pragma once

#include "Platform/Capture/FrameConverter.h"
#include "Platform/Capture/ReplayCamera.h"

#include <vector>

namespace kelvara {

/// The picture as a driver would hand it over: in that layout, each row followed by `rowPadding` bytes of nonsense.
/// The result lies in `bytes`, which are overwritten. A JPEG that cannot be encoded comes out without bytes. Internal.
[[nodiscard]] RawFrame layOut(
    const CVPixelBuffer& picture, ReplayPixelLayout layout, int rowPadding, std::vector<std::uint8_t>& bytes);

} // namespace kelvara
