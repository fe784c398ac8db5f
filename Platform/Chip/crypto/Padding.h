#pragma once

#include "Platform/Chip/Bytes.h"

#include <optional>

namespace kelvara::chip {

/// ISO/IEC 9797-1 padding method 2: 80 and then as many zeros as fill the block. There is always at least the 80.
[[nodiscard]] Bytes padded(ByteView message, std::size_t blockSize);

/// The message without its padding; absent when there is no such padding.
[[nodiscard]] std::optional<Bytes> unpadded(ByteView message);

} // namespace kelvara::chip
