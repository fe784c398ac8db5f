#include "Platform/Chip/software/ChipKeyAgreement.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "Platform/Chip/software/ChipCodes.h"

#include <algorithm>
#include <utility>

namespace kelvara::chip {

bool ChipKeyAgreement::isFor(const CommandApdu& command) const
{
    return (command.ins == codes::manageSecurityEnvironment && command.p1 == 0x41
               && (command.p2 == 0xA6 || command.p2 == 0xA4))
        || (command.ins == codes::generalAuthenticate && m_selected.has_value());
}

ResponseApdu ChipKeyAgreement::answer(const CommandApdu& command)
{
    const auto selected = std::exchange(m_selected, std::nullopt);
    if (command.ins == codes::generalAuthenticate) {
        const auto value = pace::unwrapped(command.data, 0x80);
        if (!selected || !value)
            return { {}, codes::wrongData };
        return agree(m_keys[*selected], *value);
    }
    const bool bringsKey = command.p2 == 0xA6;
    const auto protocol = findTlv(command.data, 0x80);
    const auto terminalKey = findTlv(command.data, 0x91);
    const auto reference = findTlv(command.data, 0x84);
    if (bringsKey ? !terminalKey : !protocol)
        return { {}, codes::wrongData };
    const auto key = std::find_if(m_keys.begin(), m_keys.end(), [&](const Key& known) {
        return (known.announced.cipher == CipherAlgorithm::TripleDES) == bringsKey
            && bytes(reference ? reference->value : ByteView {}) == known.announced.keyId
            && (bringsKey || bytes(protocol->value) == known.announced.identifier());
    });
    if (key == m_keys.end())
        return { {}, codes::unknownReference };
    if (bringsKey)
        return agree(*key, terminalKey->value);
    m_selected = static_cast<std::size_t>(key - m_keys.begin());
    return { {}, codes::success };
}

ResponseApdu ChipKeyAgreement::agree(const Key& key, ByteView terminalKey)
{
    const KeyAgreementGroup& group = *key.announced.key.group;
    const auto agreed = group.power(terminalKey, key.privateKey);
    m_session = agreed ? pace::session(group, key.announced.cipher, *agreed) : std::nullopt;
    if (!m_session)
        return { {}, codes::authenticationFailed };
    const bool isGeneral = key.announced.cipher != CipherAlgorithm::TripleDES;
    return { isGeneral ? makeTlv(pace::authenticationData, {}) : Bytes {}, codes::success };
}

std::optional<SessionKeys> ChipKeyAgreement::takeSession()
{
    return std::exchange(m_session, std::nullopt);
}

} // namespace kelvara::chip
