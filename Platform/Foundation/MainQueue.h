#pragma once

#include "Platform/Foundation/Export.h"

#include <functional>
#include <memory>

class QObject;

namespace kelvara {

/// The life of an object as another thread may see it. The object holds a `LifeToken` as a member; blocks that are
/// queued for it carry `token()` and are dropped once the object is gone. `token()` may be called on any thread while
/// the object is certain to live; the token itself may be kept and tested anywhere.
class LifeToken
{
public:
    LifeToken() : m_alive(std::make_shared<char>()) { }
    LifeToken(const LifeToken&) = delete;
    LifeToken& operator=(const LifeToken&) = delete;

    [[nodiscard]] std::weak_ptr<const void> token() const { return m_alive; }

    /// Ends the life early: everything queued under earlier tokens is dropped. Main thread.
    void end() { m_alive.reset(); }

private:
    std::shared_ptr<char> m_alive;
};

/// The GUI thread's queue. Blocks run first in, first out, each after the current event has been handled.
///
/// The blocks wait in a deque of our own behind a mutex; Qt only wakes the GUI thread. (Qt is not instrumented, so a
/// hand-over through its event queue alone would look like a race to the thread sanitizer.)
class KELVARA_EXPORT MainQueue
{
public:
    /// Queues `block` for the GUI thread; it is dropped if the context has died by then. Any thread. Needs a
    /// `QCoreApplication`; a block queued without one waits until an application runs its event loop.
    static void async(std::weak_ptr<const void> context, std::function<void()> block);

    /// The same for a Qt object as context. Main thread only, as the object's life is watched by a `QPointer`.
    static void async(QObject* context, std::function<void()> block);

    /// True on the thread of the application object.
    [[nodiscard]] static bool isCurrent();
};

} // namespace kelvara
