#pragma once

#include "Platform/Chip/Bytes.h"

namespace kelvara::chip {

/// The number that `count` bytes (four at most) from `at` on hold, which must be there.
[[nodiscard]] inline std::uint32_t bigEndianAt(ByteView data, std::size_t at, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << 8 | data[at + i];
    return value;
}

} // namespace kelvara::chip
