#include "Platform/Chip/crypto/KeyDerivation.h"

#include "Platform/Chip/crypto/Digest.h"

#include <bit>

namespace kelvara::chip {

Bytes deriveKey(CipherAlgorithm algorithm, ByteView sharedSecret, KeyUse use)
{
    const std::uint8_t counter[] = { 0, 0, 0, static_cast<std::uint8_t>(use) };
    const bool isShort = algorithm == CipherAlgorithm::TripleDES || algorithm == CipherAlgorithm::AES128;
    Bytes key = digest(
        isShort ? DigestAlgorithm::SHA1 : DigestAlgorithm::SHA256, joined({ sharedSecret, ByteView(counter) }));
    key.resize(keySize(algorithm));
    if (algorithm == CipherAlgorithm::TripleDES) {
        for (std::uint8_t& byte : key) {
            const bool odd = std::popcount(static_cast<unsigned>(byte & 0xFE)) % 2 != 0;
            byte = static_cast<std::uint8_t>((byte & 0xFE) | (odd ? 0 : 1));
        }
    }
    return key;
}

} // namespace kelvara::chip
