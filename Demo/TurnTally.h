#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

namespace kelvara::demo {

/// How long a flow has waited for people: the person before the view, the bank that arranges the call and its
/// representative. The rest is the view's own time. Main thread.
class TurnTally final : public QObject
{
public:
    /// `isPeoplesTurn` is asked again and again while the tally runs; it counts from now on.
    explicit TurnTally(std::function<bool()> isPeoplesTurn);

    [[nodiscard]] qint64 milliseconds() const { return m_milliseconds; }

private:
    const std::function<bool()> m_isPeoplesTurn;
    QTimer m_timer;
    QElapsedTimer m_sinceLook;
    qint64 m_milliseconds = 0;
};

} // namespace kelvara::demo
