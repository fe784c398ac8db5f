#include "Platform/Chip/access/Bac.h"

#include "Platform/Chip/crypto/Mac.h"

namespace kelvara::chip {

namespace bac {

Bytes sealed(const SessionKeys& documentKeys, ByteView text)
{
    const Bytes cipherText = encryptCBC(documentKeys.cipher, documentKeys.encryption, {}, text);
    return joined(
        { cipherText, messageAuthenticationCode(documentKeys.cipher, documentKeys.authentication, cipherText) });
}

std::optional<Bytes> opened(const SessionKeys& documentKeys, ByteView cryptogram)
{
    if (cryptogram.size() != cryptogramSize + macSize)
        return std::nullopt;
    const ByteView cipherText = cryptogram.first(cryptogramSize);
    if (!equalInConstantTime(cryptogram.last(macSize),
            messageAuthenticationCode(documentKeys.cipher, documentKeys.authentication, cipherText)))
        return std::nullopt;
    return decryptCBC(documentKeys.cipher, documentKeys.encryption, {}, cipherText);
}

SessionKeys session(ByteView terminalKey, ByteView chipKey, ByteView terminalChallenge, ByteView chipChallenge)
{
    Bytes seed = bytes(terminalKey);
    for (std::size_t i = 0; i < seed.size(); ++i)
        seed[i] ^= chipKey[i];
    SessionKeys keys = SessionKeys::derived(CipherAlgorithm::TripleDES, seed);
    keys.sendSequenceCounter
        = joined({ chipChallenge.last(challengeSize / 2), terminalChallenge.last(challengeSize / 2) });
    return keys;
}

} // namespace bac

Bac::Bac(const MrzKey& key, RandomSource random)
    : m_documentKeys(SessionKeys::derived(CipherAlgorithm::TripleDES, key.seed())), m_random(std::move(random))
{
    send({ 0x00, 0x84, 0x00, 0x00, {}, bac::challengeSize }); // GET CHALLENGE
}

void Bac::advance(const ResponseApdu& response)
{
    if (m_ownChallenge.empty())
        authenticate(response);
    else
        finish(response);
}

void Bac::authenticate(const ResponseApdu& response)
{
    if (!response.isSuccess())
        return fail(AccessError::Unsupported, response.sw); // no key was tried yet
    if (response.data.size() != bac::challengeSize)
        return fail(AccessError::Protocol, response.sw);
    m_chipChallenge = response.data;
    m_ownChallenge = m_random(bac::challengeSize);
    m_ownKey = m_random(bac::keyMaterialSize);
    Bytes cryptogram = bac::sealed(m_documentKeys, joined({ m_ownChallenge, m_chipChallenge, m_ownKey }));
    const auto size = static_cast<std::uint32_t>(cryptogram.size());
    send({ 0x00, 0x82, 0x00, 0x00, std::move(cryptogram), size }); // EXTERNAL AUTHENTICATE
}

void Bac::finish(const ResponseApdu& response)
{
    if (!response.isSuccess())
        return fail(saysWrongKey(response.sw) ? AccessError::WrongKey : AccessError::Protocol, response.sw);
    if (response.data.size() != bac::cryptogramSize + macSize)
        return fail(AccessError::Protocol, response.sw);
    const auto text = bac::opened(m_documentKeys, response.data);
    if (!text)
        return fail(AccessError::WrongKey, response.sw);
    const ByteView view(*text);
    if (!equalInConstantTime(view.first(bac::challengeSize), m_chipChallenge)
        || !equalInConstantTime(view.subspan(bac::challengeSize, bac::challengeSize), m_ownChallenge))
        return fail(AccessError::Protocol, response.sw); // an answer of another day
    succeed(bac::session(m_ownKey, view.last(bac::keyMaterialSize), m_ownChallenge, m_chipChallenge));
}

} // namespace kelvara::chip
