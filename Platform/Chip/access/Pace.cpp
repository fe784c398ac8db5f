#include "Platform/Chip/access/Pace.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "Platform/Chip/crypto/Padding.h"

namespace kelvara::chip {

Pace::Pace(PaceSelection selection, const PacePassword& password, RandomSource random)
    : m_selection(std::move(selection)), m_passwordKey(pace::passwordKey(m_selection.protocol.cipher, password.secret)),
      m_random(std::move(random))
{
    constexpr Tag protocolTag = 0x80, passwordTag = 0x83, parametersTag = 0x84;
    const std::uint8_t reference[] = { password.reference };
    Bytes data = joined(
        { makeTlv(protocolTag, m_selection.protocol.identifier()), makeTlv(passwordTag, ByteView(reference)) });
    if (m_selection.isAmbiguous && m_selection.parameterId)
        data = joined({ data, makeTlv(parametersTag, bigEndian(*m_selection.parameterId)) });
    // Without an expected length: there are chips that refuse MSE with one.
    send({ 0x00, 0x22, 0xC1, 0xA4, std::move(data), std::nullopt });
}

void Pace::advance(const ResponseApdu& response)
{
    const bool isWarning = m_step == Step::Select && response.sw >= 0x63C1 && response.sw <= 0x63CF; // tries left
    if (!response.isSuccess() && !isWarning) {
        if (m_step == Step::Select)
            return fail(AccessError::Unsupported, response.sw);
        return fail(m_step > Step::Nonce && saysWrongKey(response.sw) ? AccessError::WrongKey : AccessError::Protocol,
            response.sw);
    }
    switch (m_step) {
    case Step::Select:
        return requestNonce(response);
    case Step::Nonce:
        return startMapping(response);
    case Step::Map:
        return finishMapping(response);
    case Step::Agree:
        return agree(response);
    case Step::Confirm:
        return confirm(response);
    }
}

void Pace::authenticate(Bytes data, Step step)
{
    constexpr std::uint8_t chaining = 0x10;
    const bool isLast = step == Step::Confirm;
    // A number of more than some 240 bytes makes an answer that needs the extended form.
    const bool isLong
        = m_selection.group->kind() == KeyAgreementGroup::Kind::DH && m_selection.group->fieldBits() > 1920;
    const bool bringsNumber
        = step == Step::Agree || (step == Step::Map && m_selection.protocol.mapping != PaceMapping::Integrated);
    const std::uint32_t le = isLong && bringsNumber ? 65536 : 256;
    m_step = step;
    send({ isLast ? std::uint8_t { 0 } : chaining, 0x86, 0x00, 0x00, std::move(data), le });
}

void Pace::requestNonce(const ResponseApdu&)
{
    authenticate(makeTlv(pace::authenticationData, {}), Step::Nonce);
}

void Pace::startMapping(const ResponseApdu& response)
{
    const auto cryptogram = pace::unwrapped(response.data, pace::encryptedNonce);
    auto nonce = cryptogram ? pace::decryptedNonce(m_selection.protocol, m_passwordKey, *cryptogram) : std::nullopt;
    if (!nonce)
        return fail(AccessError::Protocol, response.sw);
    m_nonce = std::move(*nonce);
    if (m_selection.protocol.mapping == PaceMapping::Integrated) {
        m_terminalNonce = m_random(keySize(m_selection.protocol.cipher));
        return authenticate(pace::wrapped(pace::terminalMapping, m_terminalNonce), Step::Map);
    }
    auto pair = m_selection.group->generateKeyPair(m_selection.group->generator(), m_random);
    if (!pair)
        return fail(AccessError::Protocol, response.sw);
    m_pair = std::move(*pair);
    authenticate(pace::wrapped(pace::terminalMapping, m_pair.publicKey), Step::Map);
}

void Pace::finishMapping(const ResponseApdu& response)
{
    const KeyAgreementGroup& group = *m_selection.group;
    const auto mapping = pace::unwrapped(response.data, pace::chipMapping);
    std::optional<Bytes> generator;
    if (m_selection.protocol.mapping == PaceMapping::Integrated) {
        // The chip has nothing to add; it answers with an empty object, or without one.
        if (!mapping || mapping->empty())
            generator = pace::integratedGenerator(group, m_selection.protocol.cipher, m_nonce, m_terminalNonce);
    } else if (const auto other = mapping ? group.element(*mapping) : std::nullopt;
               other && *other != m_pair.publicKey) {
        m_chipMappingKey = *other;
        generator = pace::genericGenerator(group, m_nonce, m_pair.privateKey, *other);
    }
    auto pair = generator ? group.generateKeyPair(*generator, m_random) : std::nullopt;
    if (!pair)
        return fail(AccessError::Protocol, response.sw);
    m_pair = std::move(*pair);
    authenticate(pace::wrapped(pace::terminalKey, m_pair.publicKey), Step::Agree);
}

void Pace::agree(const ResponseApdu& response)
{
    const KeyAgreementGroup& group = *m_selection.group;
    const auto value = pace::unwrapped(response.data, pace::chipKey);
    const auto other = value ? group.element(*value) : std::nullopt;
    if (!other || *other == m_pair.publicKey) // an echo would prove its knowledge with our own token
        return fail(AccessError::Protocol, response.sw);
    const auto agreed = group.power(*other, m_pair.privateKey);
    auto keys = agreed ? pace::session(group, m_selection.protocol.cipher, *agreed) : std::nullopt;
    if (!keys)
        return fail(AccessError::Protocol, response.sw);
    m_chipKey = bytes(*value); // as the chip wrote it: should it keep leading zeros, its token covers them
    m_keys = std::move(*keys);
    authenticate(pace::wrapped(pace::terminalToken, pace::authenticationToken(m_keys, m_selection.protocol, m_chipKey)),
        Step::Confirm);
}

void Pace::confirm(const ResponseApdu& response)
{
    const auto token = pace::unwrapped(response.data, pace::chipToken);
    if (!token)
        return fail(AccessError::Protocol, response.sw);
    if (!equalInConstantTime(*token, pace::authenticationToken(m_keys, m_selection.protocol, m_pair.publicKey)))
        return fail(AccessError::WrongKey, response.sw);
    if (m_selection.protocol.mapping == PaceMapping::ChipAuthentication && !readChipAuthentication(response))
        return fail(AccessError::Protocol, response.sw);
    succeed(std::move(m_keys));
}

bool Pace::readChipAuthentication(const ResponseApdu& response)
{
    const auto cryptogram = pace::unwrapped(response.data, pace::chipAuthenticationData);
    const auto text = cryptogram
        ? decryptCBC(m_keys.cipher, m_keys.encryption, pace::chipAuthenticationVector(m_keys), *cryptogram)
        : std::nullopt;
    auto data = text ? unpadded(*text) : std::nullopt;
    if (!data || data->empty())
        return false;
    m_chipAuthentication = MappedChipAuthentication { m_selection.group, m_chipMappingKey, std::move(*data) };
    return true;
}

bool MappedChipAuthentication::isProvenBy(const SecurityInfos& cardSecurity) const
{
    for (const ChipAuthenticationPublicKeyInfo& info : cardSecurity.chipAuthenticationKeys) {
        // The same curve, however it was written down: an element of one group is taken for no other's.
        if (!info.key.group->isSame(*group))
            continue;
        const auto expected = group->power(info.key.element, data);
        if (expected && equalInConstantTime(*expected, mappingKey))
            return true;
    }
    return false;
}

} // namespace kelvara::chip
