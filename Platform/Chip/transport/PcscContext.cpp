#include "Platform/Chip/transport/PcscContext.h"

#include <utility>

namespace kelvara::chip {

TransportError transportError(LONG code)
{
    using Kind = TransportError::Kind;
    const char* const detail = pcsc_stringify_error(code);
    switch (code) {
    case SCARD_W_REMOVED_CARD:
    case SCARD_W_RESET_CARD:
    case SCARD_W_UNPOWERED_CARD:
    case SCARD_W_UNRESPONSIVE_CARD:
    case SCARD_E_NO_SMARTCARD:
    case SCARD_E_NOT_TRANSACTED: // the card left while it was answering
        return { Kind::CardLost, detail };
    case SCARD_E_NO_SERVICE:
    case SCARD_E_SERVICE_STOPPED:
    case SCARD_E_READER_UNAVAILABLE:
    case SCARD_E_UNKNOWN_READER:
    case SCARD_E_NO_READERS_AVAILABLE:
    case SCARD_E_INVALID_HANDLE:
        return { Kind::NoReader, detail };
    case SCARD_E_TIMEOUT:
        return { Kind::NoCard, detail };
    case SCARD_E_CANCELLED:
        return { Kind::Cancelled, detail };
    default:
        return { Kind::Failed, detail };
    }
}

PcscContext::PcscContext()
{
    const LONG code = SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_handle);
    m_isOpen = code == SCARD_S_SUCCESS;
    if (!m_isOpen)
        m_problem = TransportError { TransportError::Kind::NoReader, pcsc_stringify_error(code) };
}

PcscContext::~PcscContext()
{
    if (m_isOpen)
        SCardReleaseContext(m_handle);
}

PcscContext::PcscContext(PcscContext&& other) noexcept
    : m_handle(other.m_handle), m_isOpen(std::exchange(other.m_isOpen, false)), m_problem(std::move(other.m_problem))
{ }

std::vector<std::string> PcscContext::readers() const
{
    DWORD size = 0;
    if (!m_isOpen || SCardListReaders(m_handle, nullptr, nullptr, &size) != SCARD_S_SUCCESS || size == 0)
        return {};
    std::string list(size, '\0');
    if (SCardListReaders(m_handle, nullptr, list.data(), &size) != SCARD_S_SUCCESS)
        return {}; // a reader came in between: asked again soon
    std::vector<std::string> names;
    for (std::size_t at = 0; at < size && list[at] != '\0'; at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    return names;
}

} // namespace kelvara::chip
