#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace kelvara::soak {

/// Calls out when it has not been patted for a while: on a thread of its own, as the main one is what hangs.
class Watchdog
{
public:
    Watchdog(std::chrono::seconds patience, std::function<void()> bark);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void pat();

private:
    void watch();

    const std::chrono::seconds m_patience;
    const std::function<void()> m_bark;
    std::mutex m_mutex;
    std::condition_variable m_news;
    unsigned m_pats = 0;
    bool m_ends = false;
    std::thread m_thread; ///< Last: it uses the rest.
};

} // namespace kelvara::soak
