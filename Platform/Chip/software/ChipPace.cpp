#include "Platform/Chip/software/ChipPace.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "Platform/Chip/crypto/Padding.h"
#include "Platform/Chip/software/ChipCodes.h"

#include <algorithm>
#include <utility>

namespace kelvara::chip {

ChipPace::ChipPace(
    std::vector<PaceSelection> offers, std::vector<PacePassword> passwords, KeyPair staticKey, RandomSource random)
    : m_offers(std::move(offers)), m_passwords(std::move(passwords)), m_staticKey(std::move(staticKey)),
      m_random(std::move(random))
{ }

bool ChipPace::isFor(const CommandApdu& command) const
{
    return (command.ins == codes::manageSecurityEnvironment && command.p1 == 0xC1 && command.p2 == 0xA4)
        || (command.ins == codes::generalAuthenticate && m_step != Step::Idle);
}

ResponseApdu ChipPace::answer(const CommandApdu& command)
{
    if (command.ins == codes::manageSecurityEnvironment)
        return select(command);
    switch (m_step) {
    case Step::Idle:
        break;
    case Step::Nonce:
        return sendNonce();
    case Step::Map:
        return map(command.data);
    case Step::Agree:
        return agree(command.data);
    case Step::Confirm:
        return confirm(command.data);
    }
    return refuse(codes::conditionsNotSatisfied);
}

std::optional<SessionKeys> ChipPace::takeSession()
{
    return std::exchange(m_session, std::nullopt);
}

ResponseApdu ChipPace::refuse(std::uint16_t sw)
{
    m_step = Step::Idle;
    return { {}, sw };
}

ResponseApdu ChipPace::select(const CommandApdu& command)
{
    const auto identifier = findTlv(command.data, 0x80);
    const auto reference = findTlv(command.data, 0x83);
    const auto parameters = findTlv(command.data, 0x84);
    const auto protocol = identifier ? PaceProtocol::fromIdentifier(identifier->value) : std::nullopt;
    if (!protocol || !reference || reference->value.size() != 1)
        return refuse(codes::wrongData);
    const auto password = std::find_if(m_passwords.begin(), m_passwords.end(),
        [&](const PacePassword& known) { return known.reference == reference->value[0]; });
    const auto offer = std::find_if(m_offers.begin(), m_offers.end(), [&](const PaceSelection& known) {
        const Bytes id = bigEndian(known.parameterId.value_or(0));
        return known.protocol == *protocol
            && (parameters ? equalInConstantTime(parameters->value, id) : !known.isAmbiguous);
    });
    if (password == m_passwords.end() || offer == m_offers.end())
        return refuse(codes::unknownReference);
    m_selection = *offer;
    m_password = password->secret;
    m_step = Step::Nonce;
    return { {}, codes::success };
}

ResponseApdu ChipPace::sendNonce()
{
    const CipherAlgorithm cipher = m_selection.protocol.cipher;
    m_nonce = m_random(pace::nonceSize(cipher));
    m_step = Step::Map;
    return { pace::wrapped(
                 pace::encryptedNonce, encryptCBC(cipher, pace::passwordKey(cipher, m_password), {}, m_nonce)),
        codes::success };
}

ResponseApdu ChipPace::map(ByteView data)
{
    const KeyAgreementGroup& group = *m_selection.group;
    const auto value = pace::unwrapped(data, pace::terminalMapping);
    if (!value)
        return refuse(codes::wrongData);
    std::optional<Bytes> generator;
    m_mappingPair = {};
    if (m_selection.protocol.mapping == PaceMapping::Integrated) {
        generator = pace::integratedGenerator(group, m_selection.protocol.cipher, m_nonce, *value);
    } else if (auto pair = group.generateKeyPair(group.generator(), m_random)) {
        m_mappingPair = std::move(*pair);
        generator = pace::genericGenerator(group, m_nonce, m_mappingPair.privateKey, *value);
    }
    if (!generator)
        return refuse(codes::authenticationFailed);
    m_generator = std::move(*generator);
    m_step = Step::Agree;
    return { pace::wrapped(pace::chipMapping, m_mappingPair.publicKey), codes::success };
}

ResponseApdu ChipPace::agree(ByteView data)
{
    const KeyAgreementGroup& group = *m_selection.group;
    const auto value = pace::unwrapped(data, pace::terminalKey);
    const auto other = value ? group.element(*value) : std::nullopt;
    auto pair = group.generateKeyPair(m_generator, m_random);
    const auto agreed = other && pair ? group.power(*other, pair->privateKey) : std::nullopt;
    auto keys = agreed ? pace::session(group, m_selection.protocol.cipher, *agreed) : std::nullopt;
    if (!keys)
        return refuse(codes::authenticationFailed);
    m_pair = std::move(*pair);
    m_terminalKey = *other;
    m_keys = std::move(*keys);
    m_step = Step::Confirm;
    return { pace::wrapped(pace::chipKey, m_pair.publicKey), codes::success };
}

ResponseApdu ChipPace::confirm(ByteView data)
{
    const auto token = pace::unwrapped(data, pace::terminalToken);
    if (!token
        || !equalInConstantTime(*token, pace::authenticationToken(m_keys, m_selection.protocol, m_pair.publicKey)))
        return refuse(codes::authenticationFailed);
    Bytes objects = makeTlv(pace::chipToken, pace::authenticationToken(m_keys, m_selection.protocol, m_terminalKey));
    if (m_selection.protocol.mapping == PaceMapping::ChipAuthentication) {
        const auto bound = m_selection.group->quotient(m_mappingPair.privateKey, m_staticKey.privateKey);
        if (!bound)
            return refuse(codes::conditionsNotSatisfied);
        const Bytes cryptogram = encryptCBC(m_keys.cipher, m_keys.encryption, pace::chipAuthenticationVector(m_keys),
            padded(*bound, blockSize(m_keys.cipher)));
        objects = joined({ objects, makeTlv(pace::chipAuthenticationData, cryptogram) });
    }
    m_step = Step::Idle;
    m_session = std::move(m_keys);
    return { makeTlv(pace::authenticationData, objects), codes::success };
}

} // namespace kelvara::chip
