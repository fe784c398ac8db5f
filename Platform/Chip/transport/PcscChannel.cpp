#include "Platform/Chip/transport/PcscChannel.h"

#include "Platform/Chip/transport/AnswerToReset.h"

#include <array>
#include <reader.h>

namespace kelvara::chip {

namespace {

constexpr std::size_t kLongestAnswer = 65536 + 2;
constexpr std::uint8_t kMaximumApduData = 0x0A; ///< A property of PC/SC part 10, little-endian.

std::uint32_t featureCode(SCARDHANDLE card, std::uint8_t feature)
{
    std::array<std::uint8_t, 256> list {};
    DWORD size = 0;
    if (SCardControl(card, CM_IOCTL_GET_FEATURE_REQUEST, nullptr, 0, list.data(), list.size(), &size)
        != SCARD_S_SUCCESS)
        return 0;
    for (std::size_t at = 0; at + 6 <= size; at += 6) {
        if (list[at] == feature && list[at + 1] == 4)
            return std::uint32_t { list[at + 2] } << 24 | std::uint32_t { list[at + 3] } << 16
                | std::uint32_t { list[at + 4] } << 8 | list[at + 5];
    }
    return 0;
}

} // namespace

std::variant<std::unique_ptr<CardChannel>, TransportError> PcscChannel::open(
    PcscContext context, const std::string& reader)
{
    SCARDHANDLE card = 0;
    DWORD protocol = 0;
    LONG code = SCardConnect(context.handle(), reader.c_str(), SCARD_SHARE_EXCLUSIVE,
        SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &card, &protocol);
    if (code != SCARD_S_SUCCESS)
        return transportError(code);
    std::unique_ptr<PcscChannel> channel(new PcscChannel(std::move(context), card, protocol));
    code = SCardBeginTransaction(card);
    if (code != SCARD_S_SUCCESS)
        return transportError(code);
    channel->m_passesExtendedLength = channel->readerTakesExtendedLength() && channel->cardTakesExtendedLength();
    return std::unique_ptr<CardChannel>(std::move(channel));
}

PcscChannel::PcscChannel(PcscContext context, SCARDHANDLE card, DWORD protocol)
    : m_context(std::move(context)), m_card(card), m_protocol(protocol)
{ }

PcscChannel::~PcscChannel()
{
    SCardEndTransaction(m_card, SCARD_LEAVE_CARD);
    SCardDisconnect(m_card, SCARD_UNPOWER_CARD);
}

std::variant<Bytes, TransportError> PcscChannel::transmit(ByteView command)
{
    Bytes answer(kLongestAnswer);
    DWORD size = static_cast<DWORD>(answer.size());
    const SCARD_IO_REQUEST* const protocol = m_protocol == SCARD_PROTOCOL_T0 ? SCARD_PCI_T0 : SCARD_PCI_T1;
    const LONG code = SCardTransmit(
        m_card, protocol, command.data(), static_cast<DWORD>(command.size()), nullptr, answer.data(), &size);
    if (code != SCARD_S_SUCCESS)
        return transportError(code);
    answer.resize(size);
    return answer;
}

bool PcscChannel::readerTakesExtendedLength() const
{
    const std::uint32_t code = featureCode(m_card, FEATURE_GET_TLV_PROPERTIES);
    std::array<std::uint8_t, 256> list {};
    DWORD size = 0;
    if (code == 0 || SCardControl(m_card, code, nullptr, 0, list.data(), list.size(), &size) != SCARD_S_SUCCESS)
        return true; // a reader that says nothing is tried; what it refuses is asked for in smaller blocks
    for (std::size_t at = 0; at + 2 <= size && at + 2 + list[at + 1] <= size; at += 2U + list[at + 1]) {
        if (list[at] != kMaximumApduData || list[at + 1] != 4)
            continue;
        const std::uint32_t most = list[at + 2] | std::uint32_t { list[at + 3] } << 8
            | std::uint32_t { list[at + 4] } << 16 | std::uint32_t { list[at + 5] } << 24;
        return most > 256;
    }
    return true;
}

bool PcscChannel::cardTakesExtendedLength() const
{
    std::array<std::uint8_t, MAX_ATR_SIZE> atr {};
    DWORD size = static_cast<DWORD>(atr.size());
    DWORD state = 0;
    DWORD protocol = 0;
    if (SCardStatus(m_card, nullptr, nullptr, &state, &protocol, atr.data(), &size) != SCARD_S_SUCCESS)
        return false;
    return announcesExtendedLength(ByteView(atr).first(size));
}

} // namespace kelvara::chip
