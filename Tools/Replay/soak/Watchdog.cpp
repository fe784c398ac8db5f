#include "Tools/Replay/soak/Watchdog.h"

namespace kelvara::soak {

Watchdog::Watchdog(std::chrono::seconds patience, std::function<void()> bark)
    : m_patience(patience), m_bark(std::move(bark)), m_thread([this] { watch(); })
{ }

Watchdog::~Watchdog()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_news.notify_all();
    m_thread.join();
}

void Watchdog::pat()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_pats;
    }
    m_news.notify_all();
}

void Watchdog::watch()
{
    std::unique_lock lock(m_mutex);
    while (!m_ends) {
        const unsigned seen = m_pats;
        if (!m_news.wait_for(lock, m_patience, [&] { return m_ends || m_pats != seen; })) {
            m_bark();
            return;
        }
    }
}

} // namespace kelvara::soak
