#pragma once

#include <QStringList>

#include <algorithm>
#include <functional>

class QAccessibleEvent;

namespace kelvara::test {

/// Listens in place of a screen reader while it lives; one at a time. Programs that use it have AccessWatch.cpp, which
/// is an accessibility bridge as platforms have one: an update handler hears nothing unless the platform has found
/// assistive technology running, and offscreen there is none.
class AccessWatch
{
public:
    AccessWatch();
    ~AccessWatch();
    AccessWatch(const AccessWatch&) = delete;
    AccessWatch& operator=(const AccessWatch&) = delete;

    /// Of every alert the words that a screen reader finds at its object: the description if it has one, else the name.
    QStringList said;
    QStringList stateChanges; ///< Names of the objects.
    std::function<void(QAccessibleEvent&)> during; ///< Done at every event, of any kind, before it is written down.

    [[nodiscard]] bool hasSaid(const QString& words) const
    {
        return std::ranges::any_of(said, [&](const QString& sentence) { return sentence.contains(words); });
    }

    void hear(QAccessibleEvent& event);
};

} // namespace kelvara::test
