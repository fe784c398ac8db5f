#pragma once

#include <cstdio>

namespace kelvara {

/// Writes a line to standard output at once, past Qt's logging: hosts read these lines as they come. Any thread.
inline void printLine(const char* line)
{
    std::puts(line);
    std::fflush(stdout);
}

} // namespace kelvara
