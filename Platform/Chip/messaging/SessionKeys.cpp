#include "Platform/Chip/messaging/SessionKeys.h"

#include "Platform/Chip/crypto/Mac.h"
#include "Platform/Chip/crypto/Padding.h"

namespace kelvara::chip {

namespace {

Bytes initialVector(const SessionKeys& keys)
{
    if (keys.cipher == CipherAlgorithm::TripleDES)
        return {};
    return encryptBlock(keys.cipher, keys.encryption, keys.sendSequenceCounter);
}

} // namespace

SessionKeys SessionKeys::derived(CipherAlgorithm cipher, ByteView secret)
{
    return { cipher, deriveKey(cipher, secret, KeyUse::Encryption), deriveKey(cipher, secret, KeyUse::Authentication),
        Bytes(blockSize(cipher), 0) };
}

void SessionKeys::countUp()
{
    for (auto digit = sendSequenceCounter.rbegin(); digit != sendSequenceCounter.rend(); ++digit) {
        if (++*digit != 0)
            return;
    }
}

Bytes SessionKeys::encrypted(ByteView text) const
{
    return encryptCBC(cipher, encryption, initialVector(*this), padded(text, blockSize(cipher)));
}

std::optional<Bytes> SessionKeys::decrypted(ByteView cipherText) const
{
    const auto text = decryptCBC(cipher, encryption, initialVector(*this), cipherText);
    return text ? unpadded(*text) : std::nullopt;
}

Bytes SessionKeys::checksum(ByteView head, ByteView objects) const
{
    const Bytes message = joined({ sendSequenceCounter, head, objects });
    // The retail MAC pads by itself, CMAC does not in this way.
    return messageAuthenticationCode(
        cipher, authentication, cipher == CipherAlgorithm::TripleDES ? message : padded(message, blockSize(cipher)));
}

} // namespace kelvara::chip
