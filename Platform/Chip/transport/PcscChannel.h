#pragma once

#include "Platform/Chip/transport/PcscContext.h"

#include <memory>
#include <string>
#include <variant>

namespace kelvara::chip {

/// One card in a PC/SC reader. Internal: made by `PcscTerminal`.
class PcscChannel final : public CardChannel
{
public:
    /// Takes the card for itself; the context goes with the channel.
    [[nodiscard]] static std::variant<std::unique_ptr<CardChannel>, TransportError> open(
        PcscContext context, const std::string& reader);
    ~PcscChannel() override;
    PcscChannel(const PcscChannel&) = delete;
    PcscChannel& operator=(const PcscChannel&) = delete;

    [[nodiscard]] std::variant<Bytes, TransportError> transmit(ByteView command) override;
    [[nodiscard]] bool passesExtendedLength() const override { return m_passesExtendedLength; }

private:
    PcscChannel(PcscContext context, SCARDHANDLE card, DWORD protocol);
    [[nodiscard]] bool readerTakesExtendedLength() const;
    [[nodiscard]] bool cardTakesExtendedLength() const;

    PcscContext m_context;
    SCARDHANDLE m_card;
    DWORD m_protocol;
    bool m_passesExtendedLength = false;
};

} // namespace kelvara::chip
