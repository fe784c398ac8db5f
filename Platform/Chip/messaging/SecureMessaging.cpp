#include "Platform/Chip/messaging/SecureMessaging.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/crypto/Mac.h"
#include "Platform/Chip/messaging/ProtectedObjects.h"

namespace kelvara::chip {

namespace {

constexpr std::uint32_t shortLe = 256;
constexpr std::uint32_t extendedLe = 65536;
constexpr std::size_t greatestData = 65535;

Bytes expectedLengthObject(const CommandApdu& command)
{
    if (!command.le)
        return {};
    Bytes digits;
    if (command.isExtended())
        digits.push_back(static_cast<std::uint8_t>(*command.le >> 8));
    digits.push_back(static_cast<std::uint8_t>(*command.le)); // the greatest number of each form is written as zero
    return makeTlv(protection::expectedLength, digits);
}

} // namespace

std::optional<CommandApdu> SecureMessaging::protect(const CommandApdu& command)
{
    if (m_isOver || m_isAnswerDue || command.data.size() > greatestData - 64) // what protection adds at most
        return std::nullopt;
    m_keys.countUp();
    m_isAnswerDue = true;
    CommandApdu result { static_cast<std::uint8_t>(command.cla | protection::classBits), command.ins, command.p1,
        command.p2, {}, shortLe };
    const Bytes objects = joined({ dataObject(m_keys, command.ins, command.data), expectedLengthObject(command) });
    const Bytes checksum = m_keys.checksum(protectedHeader(result, m_keys.cipher), objects);
    result.data = joined({ objects, makeTlv(protection::checksum, checksum) });
    if (command.isExtended() || result.isExtended())
        result.le = extendedLe;
    return result;
}

std::variant<ResponseApdu, MessagingFailure> SecureMessaging::unprotect(const ResponseApdu& response)
{
    if (m_isOver || !m_isAnswerDue)
        return end(MessagingError::SessionOver, response.sw);
    m_isAnswerDue = false;
    if (response.data.empty())
        return end(MessagingError::Unprotected, response.sw);
    m_keys.countUp();
    CheckedObjects objects;
    const ObjectsProblem problem = checkObjects(m_keys, {}, response.data, objects);
    if (problem != ObjectsProblem::None)
        return end(problem == ObjectsProblem::BadChecksum ? MessagingError::BadChecksum : MessagingError::Malformed,
            response.sw);
    if (objects.status.empty() || !objects.expectedLength.empty())
        return end(MessagingError::Malformed, response.sw);
    ResponseApdu result { {}, static_cast<std::uint16_t>(objects.status[0] << 8 | objects.status[1]) };
    if (!objects.data.empty()) {
        auto text = m_keys.decrypted(objects.data);
        if (!text)
            return end(MessagingError::Malformed, response.sw);
        result.data = std::move(*text);
    }
    return result;
}

std::size_t SecureMessaging::greatestShortResponse() const
{
    constexpr std::size_t statusObjectSize = 4;
    constexpr std::size_t cryptogramHeadSize = 4; // tag, two bytes of length, padding indicator
    const std::size_t room = shortLe - statusObjectSize - (2 + macSize) - cryptogramHeadSize;
    return room / blockSize(m_keys.cipher) * blockSize(m_keys.cipher) - 1; // at least one byte is padding
}

MessagingFailure SecureMessaging::end(MessagingError error, std::uint16_t sw)
{
    m_isOver = true;
    m_keys = {};
    return { error, sw };
}

} // namespace kelvara::chip
