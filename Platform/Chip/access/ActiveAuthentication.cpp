#include "Platform/Chip/access/ActiveAuthentication.h"

#include "Platform/Chip/crypto/SignatureKey.h"

namespace kelvara::chip {

ActiveAuthentication::ActiveAuthentication(ByteView publicKeyInfo, std::optional<ActiveAuthenticationInfo> info,
    std::uint32_t expected, const RandomSource& random)
    : m_publicKeyInfo(bytes(publicKeyInfo)), m_info(info)
{
    if (!SignatureKey::fromInfo(m_publicKeyInfo)) {
        fail(AccessError::Unsupported, 0);
        return;
    }
    constexpr std::size_t challengeSize = 8;
    m_challenge = random(challengeSize);
    send({ 0x00, 0x88, 0x00, 0x00, m_challenge, expected }); // INTERNAL AUTHENTICATE
}

void ActiveAuthentication::advance(const ResponseApdu& response)
{
    if (!response.isSuccess()) {
        const bool isRefusal = response.sw == 0x6D00 || response.sw == 0x6E00 || response.sw == 0x6A88;
        return fail(isRefusal ? AccessError::Unsupported : AccessError::Protocol, response.sw);
    }
    if (response.data.empty())
        return fail(AccessError::Protocol, response.sw);
    const auto key = SignatureKey::fromInfo(m_publicKeyInfo);
    bool isGenuine = false;
    if (key->isRsa()) {
        isGenuine = key->verifiesRecovery(m_challenge, response.data);
    } else if (m_info) {
        isGenuine = key->verifiesPlain(m_info->digest, m_challenge, response.data);
    } else { // Some issuers leave the info out. The challenge is ours, so that no digest's weakness is of use.
        for (const DigestAlgorithm digest : { DigestAlgorithm::SHA256, DigestAlgorithm::SHA1, DigestAlgorithm::SHA224,
                 DigestAlgorithm::SHA384, DigestAlgorithm::SHA512 })
            isGenuine = isGenuine || key->verifiesPlain(digest, m_challenge, response.data);
    }
    if (!isGenuine)
        return fail(AccessError::NotGenuine, response.sw);
    succeed();
}

} // namespace kelvara::chip
