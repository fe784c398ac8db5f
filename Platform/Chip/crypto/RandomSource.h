#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <functional>

namespace kelvara::chip {

/// Gives as many random bytes as it is asked for. Injectable, so that a protocol's run can be repeated.
using RandomSource = std::function<Bytes(std::size_t count)>;

/// The cryptographic generator of the platform. Its copies may be used on any thread.
[[nodiscard]] KELVARA_EXPORT RandomSource secureRandom();

} // namespace kelvara::chip
