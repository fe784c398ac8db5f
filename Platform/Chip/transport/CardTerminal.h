#pragma once

#include "Platform/Chip/transport/CardChannel.h"
#include "Platform/Foundation/Export.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <variant>

namespace kelvara::chip {

/// Set once, from any thread, by whoever no longer wants an operation that waits.
class CancelToken
{
public:
    void cancel() { m_cancelled = true; }
    [[nodiscard]] bool isCancelled() const { return m_cancelled; }

private:
    std::atomic<bool> m_cancelled { false };
};

/// A contactless reader. One thread at a time, the reader's own, but for `isAvailable`.
class KELVARA_EXPORT CardTerminal
{
public:
    virtual ~CardTerminal() = default;

    /// Whether a reader is there. Quick; any thread.
    [[nodiscard]] virtual bool isAvailable() const = 0;

    /// Waits until a card is in the field and opens the way to it. Looks at the token several times a second. The token
    /// outlives the channel, which may look at it too while a command takes long.
    [[nodiscard]] virtual std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds timeout, const CancelToken& cancel)
        = 0;
};

} // namespace kelvara::chip
