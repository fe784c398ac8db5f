#pragma once

#include <cstddef>

namespace kelvara::chip {

/// How far a read is, in percent of its bytes. Most files tell their size only once they are begun, so that the whole
/// is guessed at first: whenever it becomes better known, the percents that are left are spread evenly over the bytes
/// that are left. Never falls, and reaches 100 only when told so. A value.
class ReadProgress
{
public:
    /// `read` of presumably `whole` bytes are here.
    void update(std::size_t read, std::size_t whole);
    void finish() { m_percent = 100; }

    /// 0 to 100.
    [[nodiscard]] int percent() const { return static_cast<int>(m_percent); }

private:
    double m_percent = 0;
    std::size_t m_read = 0;
};

} // namespace kelvara::chip
