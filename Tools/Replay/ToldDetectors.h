#pragma once

#include "Platform/Vision/VisionDetectors.h"

#include <atomic>
#include <memory>

namespace kelvara::replay {

/// What the told detectors find. Any thread.
struct Told
{
    std::atomic<bool> card { false };
    std::atomic<bool> face { false };
};

/// Detectors that find a card and a face because they are told so, in no time; lines of text are found for real. For
/// soaks, which are about the order of things and not about eyesight.
[[nodiscard]] std::shared_ptr<const VisionDetectors> toldDetectors(std::shared_ptr<const Told> told);

} // namespace kelvara::replay
