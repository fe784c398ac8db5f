#pragma once

#include "Platform/Vision/VisionDetectors.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace kelvara::replay {

/// The detectors, and a count of how often they have looked for a face: the last thing that the view does with a
/// picture before it takes the next one. Any thread.
[[nodiscard]] std::shared_ptr<const VisionDetectors> countingLooks(
    const std::shared_ptr<const VisionDetectors>& detectors, std::shared_ptr<std::atomic<std::int64_t>> looks);

} // namespace kelvara::replay
