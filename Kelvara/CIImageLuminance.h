#pragma once

#include "Platform/Imaging/CIImage.h"

namespace kelvara {

/// How bright a filter image is on average, 0 to 1: its mean colour, taken in linear light and encoded, weighed by
/// 0.213, 0.715 and 0.072. Alpha is ignored. An image without extent is a fatal error. Renders through
/// `CIContext::shared()`: one thread at a time.
[[nodiscard]] double averageLuminance(const CIImage& image);

} // namespace kelvara
