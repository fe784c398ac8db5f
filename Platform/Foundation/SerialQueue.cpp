#include "Platform/Foundation/SerialQueue.h"

#include "Platform/Foundation/FatalError.h"

#include <QThread>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace kelvara {

namespace {

QThread::Priority priorityOf(QualityOfService quality)
{
    switch (quality) {
    case QualityOfService::UserInteractive:
        return QThread::HighPriority;
    case QualityOfService::UserInitiated:
        return QThread::NormalPriority;
    case QualityOfService::Utility:
        return QThread::LowPriority;
    case QualityOfService::Background:
        return QThread::LowestPriority;
    }
    return QThread::InheritPriority;
}

} // namespace

struct SerialQueue::State : QThread
{
    State(QString name, QualityOfService wanted) : label(std::move(name)), quality(wanted) { setObjectName(label); }

    void run() override
    {
        std::unique_lock lock(mutex);
        runner = std::this_thread::get_id();
        for (;;) {
            wake.wait(lock, [this] { return ending || !blocks.empty(); });
            if (blocks.empty())
                return;
            std::function<void()> block = std::move(blocks.front());
            blocks.pop_front();
            lock.unlock();
            block();
            block = nullptr; // what the block captured goes on this thread, before the next block runs
            lock.lock();
        }
    }

    const QString label;
    const QualityOfService quality;
    mutable std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> blocks;
    std::thread::id runner;
    bool started = false;
    bool ending = false;
};

SerialQueue::SerialQueue(QString label, QualityOfService quality)
    : d(std::make_unique<State>(std::move(label), quality))
{ }

SerialQueue::~SerialQueue()
{
    if (isCurrent())
        fatalError("A serial queue cannot be destroyed by a block that runs on it.");
    {
        const std::lock_guard lock(d->mutex);
        d->ending = true;
        if (!d->started)
            return;
    }
    d->wake.notify_one();
    d->wait();
    // Qt's hand-over at a thread's end is not visible to the thread sanitizer; our own lock's is.
    const std::lock_guard lock(d->mutex);
}

QString SerialQueue::label() const
{
    return d->label;
}

QualityOfService SerialQueue::quality() const
{
    return d->quality;
}

void SerialQueue::async(std::function<void()> block)
{
    {
        const std::lock_guard lock(d->mutex);
        d->blocks.push_back(std::move(block));
        if (!d->started) {
            d->started = true;
            d->start(priorityOf(d->quality));
        }
    }
    d->wake.notify_one();
}

void SerialQueue::sync(std::function<void()> block)
{
    if (isCurrent())
        fatalError("A block cannot wait for another block of the queue it runs on.");
    std::mutex mutex;
    std::condition_variable done;
    bool finished = false;
    async([&] {
        if (block)
            block();
        // Told under the lock: the waiting side owns these objects and destroys them once it has the lock again.
        const std::lock_guard lock(mutex);
        finished = true;
        done.notify_one();
    });
    std::unique_lock lock(mutex);
    done.wait(lock, [&] { return finished; });
}

void SerialQueue::drain()
{
    {
        const std::lock_guard lock(d->mutex);
        if (!d->started)
            return;
    }
    sync({});
}

bool SerialQueue::isCurrent() const
{
    const std::lock_guard lock(d->mutex);
    return d->started && d->runner == std::this_thread::get_id();
}

} // namespace kelvara
