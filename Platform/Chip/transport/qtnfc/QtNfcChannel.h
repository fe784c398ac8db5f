#pragma once

#include "Platform/Chip/transport/CardChannel.h"

#include <QNearFieldManager>
#include <QPointer>

#include <memory>

namespace kelvara::chip {

/// One card in a phone's field. Internal: made by `QtNfcTerminal`, on the thread that it is used and destroyed on.
class QtNfcChannel final : public CardChannel
{
public:
    /// Takes the manager that found the card and owns it; it looks for cards as long as the channel lives.
    QtNfcChannel(std::unique_ptr<QNearFieldManager> field, QNearFieldTarget* card);
    ~QtNfcChannel() override;
    QtNfcChannel(const QtNfcChannel&) = delete;
    QtNfcChannel& operator=(const QtNfcChannel&) = delete;

    [[nodiscard]] std::variant<Bytes, TransportError> transmit(ByteView command) override;
    /// By what the reader takes: the card's own word is not to be had here.
    [[nodiscard]] bool passesExtendedLength() const override { return m_passesExtendedLength; }

private:
    std::unique_ptr<QNearFieldManager> m_field;
    QPointer<QNearFieldTarget> m_card;
    bool m_isLost = false;
    bool m_passesExtendedLength = false;
};

} // namespace kelvara::chip
