#include "Tools/Replay/FlowLog.h"

#include <algorithm>

namespace kelvara::replay {

void FlowLog::add(const QString& event, QJsonObject facts)
{
    m_entries.push_back({ event, std::move(facts), m_clock.elapsed() });
}

bool FlowLog::pass(const QString& event)
{
    for (std::size_t i = m_passed; i < m_entries.size(); ++i) {
        if (m_entries[i].event == event) {
            m_passed = i + 1;
            return true;
        }
    }
    return false;
}

int FlowLog::count(const QString& event) const
{
    return static_cast<int>(std::count_if(
        m_entries.begin(), m_entries.end(), [&event](const Entry& entry) { return entry.event == event; }));
}

QJsonArray FlowLog::toJson(bool withTimes) const
{
    QJsonArray list;
    for (const Entry& entry : m_entries) {
        QJsonObject object = entry.facts;
        object.insert(QStringLiteral("event"), entry.event);
        if (withTimes)
            object.insert(QStringLiteral("ms"), entry.milliseconds);
        list.append(object);
    }
    return list;
}

} // namespace kelvara::replay
