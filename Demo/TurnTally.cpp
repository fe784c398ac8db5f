#include "Demo/TurnTally.h"

namespace kelvara::demo {

namespace {

constexpr int kLookMilliseconds = 10;

} // namespace

TurnTally::TurnTally(std::function<bool()> isPeoplesTurn) : m_isPeoplesTurn(std::move(isPeoplesTurn))
{
    connect(&m_timer, &QTimer::timeout, this, [this] {
        // Between two looks a busy view may have taken long: its time, if it is its turn now.
        const qint64 passed = m_sinceLook.restart();
        if (m_isPeoplesTurn())
            m_milliseconds += passed;
    });
    m_sinceLook.start();
    m_timer.start(kLookMilliseconds);
}

} // namespace kelvara::demo
