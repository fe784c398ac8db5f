#pragma once

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <vector>

namespace kelvara::replay {

/// What happened in a session, in its order. Facts tell sizes and verdicts, never what stands on a card. Main thread.
class FlowLog
{
public:
    FlowLog() { m_clock.start(); }

    void add(const QString& event, QJsonObject facts = {});

    /// The state of waiting: the next event of that name after the one that was waited for last, which is thereby
    /// passed. False if it has not come.
    [[nodiscard]] bool pass(const QString& event);

    [[nodiscard]] int count(const QString& event) const;

    /// Without times the text is the same for the same order of events.
    [[nodiscard]] QJsonArray toJson(bool withTimes) const;

private:
    struct Entry
    {
        QString event;
        QJsonObject facts;
        qint64 milliseconds = 0;
    };
    std::vector<Entry> m_entries;
    std::size_t m_passed = 0; ///< Entries before this one were waited for or passed by.
    QElapsedTimer m_clock;
};

} // namespace kelvara::replay
