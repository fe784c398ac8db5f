#include "Platform/Foundation/MainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QThread>

#include <deque>
#include <mutex>

namespace kelvara {

namespace {

struct Entry
{
    std::weak_ptr<const void> context;
    std::function<void()> block;
};

/// The queue itself stands apart from the object that Qt wakes: whichever thread posts first makes that object, and
/// only this lock, there before any thread, orders what the threads see of each other.
constinit std::mutex queueMutex;

/// To be used under the lock. Never destroyed: worker threads may still post while the process winds down.
std::deque<Entry>& entries()
{
    static auto* const waiting = new std::deque<Entry>;
    return *waiting;
}

/// Lives on the GUI thread and runs what waits. One block an event: whatever a block spins (a dialog, a nested
/// event loop) finds the rest of the queue still served, in order.
class Runner : public QObject
{
public:
    void post(Entry entry)
    {
        // Made before the lock and read under it: so the event, which Qt hands over, is ordered by a lock of our own.
        auto* wake = new QEvent(QEvent::User);
        {
            const std::lock_guard lock(queueMutex);
            entries().push_back(std::move(entry));
        }
        QCoreApplication::postEvent(this, wake);
    }

protected:
    bool event(QEvent* event) override
    {
        Entry entry;
        {
            std::unique_lock lock(queueMutex);
            if (event->type() != QEvent::User) {
                lock.unlock();
                return QObject::event(event);
            }
            if (entries().empty())
                return true;
            entry = std::move(entries().front());
            entries().pop_front();
        }
        if (!entry.context.expired())
            entry.block();
        return true;
    }
};

Runner& runner()
{
    // Never destroyed: worker threads may still post while the process winds down.
    static Runner* const instance = [] {
        auto* made = new Runner;
        if (QCoreApplication* application = QCoreApplication::instance())
            made->moveToThread(application->thread());
        return made;
    }();
    return *instance;
}

} // namespace

void MainQueue::async(std::weak_ptr<const void> context, std::function<void()> block)
{
    runner().post({ std::move(context), std::move(block) });
}

void MainQueue::async(QObject* context, std::function<void()> block)
{
    static const auto always = std::make_shared<char>();
    runner().post({ always, [guard = QPointer<QObject>(context), block = std::move(block)] {
                       if (guard)
                           block();
                   } });
}

bool MainQueue::isCurrent()
{
    const QCoreApplication* application = QCoreApplication::instance();
    return application && QThread::currentThread() == application->thread();
}

} // namespace kelvara
