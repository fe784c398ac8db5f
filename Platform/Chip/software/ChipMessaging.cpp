#include "Platform/Chip/software/ChipMessaging.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/messaging/ProtectedObjects.h"
#include "Platform/Foundation/FatalError.h"

namespace kelvara::chip {

std::optional<CommandApdu> ChipMessaging::unprotect(const CommandApdu& command)
{
    if (m_isOver)
        return std::nullopt;
    m_isOver = true; // until everything was found right
    m_keys.countUp();
    CheckedObjects objects;
    if ((command.cla & protection::classBits) != protection::classBits
        || checkObjects(m_keys, protectedHeader(command, m_keys.cipher), command.data, objects) != ObjectsProblem::None
        || !objects.status.empty())
        return std::nullopt;
    CommandApdu result { static_cast<std::uint8_t>(command.cla & ~protection::classBits), command.ins, command.p1,
        command.p2, {}, std::nullopt };
    if (!objects.data.empty()) {
        auto text = m_keys.decrypted(objects.data);
        if (!text)
            return std::nullopt;
        result.data = std::move(*text);
    }
    if (!objects.expectedLength.empty()) {
        std::uint32_t le = 0;
        for (const std::uint8_t digit : objects.expectedLength)
            le = le << 8 | digit;
        const std::uint32_t greatest = objects.expectedLength.size() == 1 ? 256 : 65536;
        result.le = le == 0 ? greatest : le;
    }
    m_ins = command.ins;
    m_isOver = false;
    return result;
}

ResponseApdu ChipMessaging::protect(const ResponseApdu& response)
{
    precondition(!m_isOver, "A session that is over protects nothing.");
    m_keys.countUp();
    const std::uint8_t status[]
        = { static_cast<std::uint8_t>(response.sw >> 8), static_cast<std::uint8_t>(response.sw) };
    const Bytes objects
        = joined({ dataObject(m_keys, m_ins, response.data), makeTlv(protection::status, ByteView(status)) });
    return { joined({ objects, makeTlv(protection::checksum, m_keys.checksum({}, objects)) }), response.sw };
}

std::size_t ChipMessaging::greatestShortResponse() const
{
    constexpr std::size_t longest = 256, statusObject = 4, checksumObject = 10;
    constexpr std::size_t cryptogramHead = 4; // tag, two bytes of length, padding indicator
    const std::size_t block = blockSize(m_keys.cipher);
    return (longest - statusObject - checksumObject - cryptogramHead) / block * block - 1; // one byte is padding
}

} // namespace kelvara::chip
