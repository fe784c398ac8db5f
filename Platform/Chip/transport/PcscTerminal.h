#pragma once

#include "Platform/Chip/transport/CardTerminal.h"
#include "Platform/Foundation/Export.h"

#include <string>

namespace kelvara::chip {

/// The first contactless reader of the PC/SC service (pcscd). Readers and cards may come and go; a service that does
/// not run is a device without a reader.
///
/// Every card gets a context of its own, is held exclusively and within one transaction, and is powered off when its
/// channel goes.
class KELVARA_EXPORT PcscTerminal final : public CardTerminal
{
public:
    /// `readerName`: a part of the name of the reader to use; empty: the first that takes cards.
    explicit PcscTerminal(std::string readerName = {});

    [[nodiscard]] bool isAvailable() const override;
    /// Whether the PC/SC service answers, with or without a reader. Any thread.
    [[nodiscard]] bool isServiceRunning() const;
    /// Why no card can be read right now and what would help, in a sentence for the log. Any thread.
    [[nodiscard]] std::string whyUnavailable() const;
    [[nodiscard]] std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds timeout, const CancelToken& cancel) override;

private:
    std::string m_readerName;
};

} // namespace kelvara::chip
