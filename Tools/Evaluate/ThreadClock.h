#pragma once

#include <ctime>

namespace kelvara::evaluate {

/// Processor time of the calling thread, in milliseconds: what other programs take does not count.
[[nodiscard]] inline double threadMilliseconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

} // namespace kelvara::evaluate
