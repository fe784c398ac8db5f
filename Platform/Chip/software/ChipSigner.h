#pragma once

#include "Platform/Chip/crypto/RandomSource.h"
#include "Platform/Chip/crypto/SignatureKey.h"
#include "Platform/Chip/messaging/Apdu.h"

namespace kelvara::chip {

/// Active authentication as a chip does it: the other side of `ActiveAuthentication`. Not shared between threads.
class ChipSigner
{
public:
    /// The key has its private part. `hasShortTrailer` is for RSA with SHA-1: the trailer of one byte.
    ChipSigner(
        SignatureKey key, DigestAlgorithm digest, bool hasShortTrailer = false, RandomSource random = secureRandom());

    /// Whether the command is INTERNAL AUTHENTICATE.
    [[nodiscard]] static bool isFor(const CommandApdu& command) { return command.ins == 0x88; }
    [[nodiscard]] ResponseApdu answer(const CommandApdu& command) const;

    /// What DG15 holds.
    [[nodiscard]] Bytes subjectPublicKeyInfo() const { return m_key.subjectPublicKeyInfo(); }

private:
    SignatureKey m_key;
    DigestAlgorithm m_digest;
    bool m_hasShortTrailer;
    RandomSource m_random;
};

} // namespace kelvara::chip
