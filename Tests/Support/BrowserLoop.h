#pragma once

#include <QEventLoop>
#include <QTimer>

#include <functional>

namespace kelvara::test {

/// Runs a real event loop until the condition holds; false when it never did within the limit. QTest's own wait sleeps
/// between its looks, and a browser in the process, which passes a thousand small events for each call, sleeps with it.
inline bool runUntil(const std::function<bool()>& condition, int limit = 20000)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(5);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec();
    return condition();
}

} // namespace kelvara::test
