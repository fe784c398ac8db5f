#pragma once

#include "Platform/Chip/transport/CardTerminal.h"

namespace kelvara::chip {

/// The contactless reader that is built into a phone, through Qt's contactless module. For where that module has a
/// back end: Android and iOS. Desktops' builds of it mostly have none; then nothing is supported.
///
/// Cards come and go as events of the thread that waits: `waitForCard` and the channel's `transmit` run an event loop
/// of their own there. Never tried with a phone in hand: see the room's README.
class QtNfcTerminal final : public CardTerminal
{
public:
    /// Whether the device has such a reader, turned on or not. Any thread.
    [[nodiscard]] bool isSupported() const;
    /// The same, and that it is turned on.
    [[nodiscard]] bool isAvailable() const override;
    [[nodiscard]] std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds timeout, const CancelToken& cancel) override;
};

} // namespace kelvara::chip
