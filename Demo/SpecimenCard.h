#pragma once

#include "Demo/CardContents.h"

#include <cstdint>

namespace kelvara::demo {

/// What the chip of the seed's specimen holds: the zone on its back, the portrait on its front exactly as it is printed
/// there, and details of the holder, of which some are on the chip only. A null portrait if nothing can be printed.
[[nodiscard]] CardContents specimenCard(std::uint32_t seed);

} // namespace kelvara::demo
