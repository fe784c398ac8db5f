#pragma once

#include <chrono>
#include <functional>

namespace kelvara::replay {

/// Runs the event loop until the condition holds; false when it never did within the time. Main thread.
[[nodiscard]] bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost);

/// Runs the event loop for a while.
void spinFor(std::chrono::milliseconds time);

/// Runs what is queued for the main thread, and what that queues in turn.
void settle();

} // namespace kelvara::replay
