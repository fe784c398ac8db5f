#pragma once

#include <mutex>
#include <utility>

namespace kelvara {

/// A value that two threads share and replace whole. The lock is held for the copy only, so neither side ever waits
/// for the other's work.
template<typename T> class Guarded
{
public:
    [[nodiscard]] T load() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

    void store(T value)
    {
        {
            const std::lock_guard lock(m_mutex);
            std::swap(m_value, value);
        }
        // The old value goes here, outside the lock.
    }

private:
    mutable std::mutex m_mutex;
    T m_value {};
};

} // namespace kelvara
