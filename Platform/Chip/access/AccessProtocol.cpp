#include "Platform/Chip/access/AccessProtocol.h"

#include <utility>

namespace kelvara::chip {

AccessProtocol::~AccessProtocol() = default;

void AccessProtocol::receive(const ResponseApdu& response)
{
    if (m_command)
        advance(response);
}

std::optional<SecureMessaging> AccessProtocol::takeSession()
{
    return std::exchange(m_session, std::nullopt);
}

void AccessProtocol::succeed(SessionKeys keys)
{
    m_session.emplace(std::move(keys));
    succeed();
}

void AccessProtocol::fail(AccessError error, std::uint16_t sw)
{
    m_command.reset();
    m_failure = AccessFailure { error, sw };
}

bool saysWrongKey(std::uint16_t sw)
{
    return sw >> 8 == 0x63 || sw == 0x6982 || sw == 0x6988;
}

} // namespace kelvara::chip
