#pragma once

#include "Tools/Specimen/KeptPictures.h"

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

namespace kelvara::specimen {

/// The last few results of a costly function of `Key`. Any thread; two threads that miss the same key at once both
/// compute it, neither waits for the other.
template<typename Key, typename Value> class SharedCache final : public KeptPictures
{
public:
    explicit SharedCache(std::size_t capacity) : m_capacity(capacity) { }

    [[nodiscard]] std::shared_ptr<const Value> get(const Key& key, const std::function<Value()>& make)
    {
        if (auto found = find(key))
            return found;
        auto made = std::make_shared<const Value>(make());
        const std::lock_guard lock(m_mutex);
        m_entries.emplace_front(key, made);
        if (m_entries.size() > m_capacity)
            m_entries.pop_back();
        return made;
    }

    void forget() override
    {
        std::list<Entry> forgotten;
        const std::lock_guard lock(m_mutex);
        m_entries.swap(forgotten);
    }

private:
    using Entry = std::pair<Key, std::shared_ptr<const Value>>;

    [[nodiscard]] std::shared_ptr<const Value> find(const Key& key)
    {
        const std::lock_guard lock(m_mutex);
        for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
            if (entry->first == key) {
                m_entries.splice(m_entries.begin(), m_entries, entry);
                return entry->second;
            }
        }
        return nullptr;
    }

    const std::size_t m_capacity;
    std::mutex m_mutex;
    std::list<Entry> m_entries;
};

} // namespace kelvara::specimen
