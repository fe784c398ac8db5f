#pragma once

#include "Platform/Chip/crypto/Digest.h"
#include "Platform/Foundation/Export.h"

#include <memory>
#include <optional>

namespace kelvara::chip {

/// A key for the signatures of active authentication: RSA of 1024 to 4096 bits, or a curve over a prime field. Only
/// keys with a private part can sign. Copies share one key; any thread.
class KELVARA_EXPORT SignatureKey
{
public:
    /// From a SubjectPublicKeyInfo; absent for bytes that are no usable key.
    [[nodiscard]] static std::optional<SignatureKey> fromInfo(ByteView subjectPublicKeyInfo);
    /// A fresh key with its private part, for chips in software.
    [[nodiscard]] static std::optional<SignatureKey> generateRsa(unsigned bits);
    /// On a curve by its usual short name; absent for a name that is none.
    [[nodiscard]] static std::optional<SignatureKey> generateEc(const char* curve);

    [[nodiscard]] bool isRsa() const;
    [[nodiscard]] Bytes subjectPublicKeyInfo() const;

    /// Whether the signature recovers a message that ends with `known` (ISO/IEC 9796-2 digital signature scheme 1; its
    /// trailer names the digest). False for keys that are not RSA.
    [[nodiscard]] bool verifiesRecovery(ByteView known, ByteView signature) const;
    /// Whether the signature, r and s one after the other, is the message's by ECDSA. False for RSA keys.
    [[nodiscard]] bool verifiesPlain(DigestAlgorithm algorithm, ByteView message, ByteView signature) const;

    /// A signature that `verifiesRecovery`, over as much of `random` as fits before the known part. With SHA-1 and
    /// `hasShortTrailer` the trailer is the single byte BC.
    [[nodiscard]] std::optional<Bytes> signRecovery(
        DigestAlgorithm algorithm, ByteView known, ByteView random, bool hasShortTrailer) const;
    [[nodiscard]] std::optional<Bytes> signPlain(DigestAlgorithm algorithm, ByteView message) const;

private:
    struct Key;
    explicit SignatureKey(std::shared_ptr<const Key> key) : m_key(std::move(key)) { }

    std::shared_ptr<const Key> m_key;
};

} // namespace kelvara::chip
