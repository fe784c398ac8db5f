#include "Platform/Chip/reading/ReadProgress.h"

#include <algorithm>

namespace kelvara::chip {

void ReadProgress::update(std::size_t read, std::size_t whole)
{
    constexpr double kBeforeTheEnd = 99;
    if (read <= m_read)
        return;
    const double left = static_cast<double>(std::max(whole, read)) - static_cast<double>(m_read);
    m_percent += std::max(0.0, kBeforeTheEnd - m_percent) * static_cast<double>(read - m_read) / left;
    m_read = read;
}

} // namespace kelvara::chip
