#include "Platform/Chip/access/ChipAuthentication.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/PaceCalculation.h"

#include <tuple>

namespace kelvara::chip {

namespace {

constexpr Tag protocolTag = 0x80, keyTag = 0x84, ephemeralKeyTag = 0x91;

auto rank(const ChipAuthenticationSelection& selection)
{
    return std::tuple(static_cast<int>(selection.cipher), selection.key.group->kind() == KeyAgreementGroup::Kind::ECDH);
}

} // namespace

Bytes ChipAuthenticationSelection::identifier() const
{
    const std::uint8_t kind = key.group->kind() == KeyAgreementGroup::Kind::DH ? 1 : 2;
    return smartcardIdentifier({ 3, kind, arcOf(cipher) });
}

std::optional<ChipAuthenticationSelection> chooseChipAuthentication(const SecurityInfos& dataGroup14)
{
    std::optional<ChipAuthenticationSelection> best;
    const auto consider = [&best](ChipAuthenticationSelection selection) {
        if (!best || rank(selection) > rank(*best))
            best = std::move(selection);
    };
    for (const ChipAuthenticationPublicKeyInfo& key : dataGroup14.chipAuthenticationKeys) {
        if (dataGroup14.chipAuthentication.empty())
            consider({ key.key, CipherAlgorithm::TripleDES, key.keyId });
        const bool isOnly = dataGroup14.chipAuthenticationKeys.size() == 1; // then its number does not matter
        for (const ChipAuthenticationInfo& info : dataGroup14.chipAuthentication) {
            if (info.agreement == key.key.group->kind() && (info.keyId == key.keyId || isOnly))
                consider({ key.key, info.cipher, info.keyId });
        }
    }
    return best;
}

ChipAuthentication::ChipAuthentication(ChipAuthenticationSelection selection, const RandomSource& random)
    : m_selection(std::move(selection))
{
    const KeyAgreementGroup& group = *m_selection.key.group;
    auto pair = group.generateKeyPair(group.generator(), random);
    if (!pair) {
        fail(AccessError::Unsupported, 0);
        return;
    }
    m_pair = std::move(*pair);
    const Bytes reference = m_selection.keyId.empty() ? Bytes {} : makeTlv(keyTag, m_selection.keyId);
    m_isKeySent = m_selection.cipher == CipherAlgorithm::TripleDES;
    if (m_isKeySent) // MSE:Set KAT brings the key with it
        send({ 0x00, 0x22, 0x41, 0xA6, joined({ makeTlv(ephemeralKeyTag, m_pair.publicKey), reference }), {} });
    else
        send({ 0x00, 0x22, 0x41, 0xA4, joined({ makeTlv(protocolTag, m_selection.identifier()), reference }), {} });
}

void ChipAuthentication::advance(const ResponseApdu& response)
{
    if (!response.isSuccess()) {
        const bool isRefusal = response.sw == 0x6D00 || response.sw == 0x6E00 || response.sw == 0x6A88
            || response.sw == 0x6A80 || response.sw == 0x6A81 || response.sw == 0x6A86;
        return fail(isRefusal ? AccessError::Unsupported : AccessError::Protocol, response.sw);
    }
    if (!m_isKeySent) {
        m_isKeySent = true;
        return send({ 0x00, 0x86, 0x00, 0x00, pace::wrapped(0x80, m_pair.publicKey), 256 });
    }
    const KeyAgreementGroup& group = *m_selection.key.group;
    const auto agreed = group.power(m_selection.key.element, m_pair.privateKey);
    auto keys = agreed ? pace::session(group, m_selection.cipher, *agreed) : std::nullopt;
    if (!keys)
        return fail(AccessError::Protocol, response.sw);
    succeed(std::move(*keys));
}

} // namespace kelvara::chip
