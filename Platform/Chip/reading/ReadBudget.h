#pragma once

#include <chrono>
#include <cstddef>

namespace kelvara::chip {

/// What one read may cost over all presentations of its card, so that it ends whatever the chip does. A whole document
/// takes some hundreds of commands and some seconds; time in which no card is there does not count. A value; the
/// reader's thread only.
class ReadBudget
{
public:
    explicit ReadBudget(std::size_t commands = 10'000, std::chrono::milliseconds talk = std::chrono::minutes(10))
        : m_commands(commands), m_talk(talk)
    { }

    [[nodiscard]] bool isSpent() const { return m_commands == 0 || m_talk <= m_talk.zero(); }
    /// A command that was answered, or not, after this time.
    void spend(std::chrono::nanoseconds time)
    {
        m_commands -= m_commands > 0 ? 1 : 0;
        m_talk -= time;
    }

private:
    std::size_t m_commands;
    std::chrono::nanoseconds m_talk;
};

} // namespace kelvara::chip
