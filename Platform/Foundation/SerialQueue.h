#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace kelvara {

/// How eagerly a queue's work is wanted, as the platform names it. Mapped to the thread's scheduling priority where
/// the system honours it.
enum class QualityOfService { UserInteractive, UserInitiated, Utility, Background };

/// A serial dispatch queue: one thread whose name is the label, blocks run first in, first out.
///
/// The thread starts with the first block, so a queue that is never used costs nothing. Destruction runs what is
/// still queued and joins the thread; it must not happen on the queue itself.
class SerialQueue
{
public:
    explicit SerialQueue(QString label, QualityOfService quality = QualityOfService::UserInitiated);
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    [[nodiscard]] QString label() const;
    [[nodiscard]] QualityOfService quality() const;

    /// Queues `block` and returns at once. Any thread.
    void async(std::function<void()> block);

    /// Queues `block` and waits until it has run. Any thread but the queue's own (a fatal error there).
    void sync(std::function<void()> block);

    /// Waits until everything queued so far has run; returns at once on a queue that was never used. Any thread but
    /// the queue's own (a fatal error there).
    void drain();

    /// True on the queue's own thread.
    [[nodiscard]] bool isCurrent() const;

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
