#pragma once

#include <QString>

#include <cstdio>

namespace kelvara::demo {

/// A line for the person at the terminal, there at once. Any thread.
inline void say(const QString& line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

} // namespace kelvara::demo
