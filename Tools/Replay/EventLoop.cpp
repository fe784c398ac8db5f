#include "Tools/Replay/EventLoop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

namespace kelvara::replay {

namespace {

constexpr int kRounds = 6;
constexpr std::chrono::milliseconds kPause { 2 };

void turn()
{
    QCoreApplication::processEvents();
    // Without an outer event loop nobody else carries out what was put off to its next turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost)
{
    const QDeadlineTimer limit(atMost);
    while (!condition()) {
        if (limit.hasExpired())
            return false;
        turn();
        if (condition())
            return true;
        QThread::msleep(static_cast<unsigned long>(kPause.count()));
    }
    return true;
}

void spinFor(std::chrono::milliseconds time)
{
    static_cast<void>(spinUntil([] { return false; }, time));
}

void settle()
{
    for (int round = 0; round < kRounds; ++round)
        turn();
}

} // namespace kelvara::replay
