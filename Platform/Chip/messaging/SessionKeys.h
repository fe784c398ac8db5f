#pragma once

#include "Platform/Chip/crypto/BlockCipher.h"
#include "Platform/Chip/crypto/KeyDerivation.h"

namespace kelvara::chip {

/// What two sides that agreed on a secret go on with (ICAO Doc 9303-11 §9.8).
struct SessionKeys
{
    CipherAlgorithm cipher = CipherAlgorithm::TripleDES;
    Bytes encryption;
    Bytes authentication;
    Bytes sendSequenceCounter; ///< One block; counted up before every command and every response.

    /// Both keys from an agreed secret, the counter at zero.
    [[nodiscard]] static SessionKeys derived(CipherAlgorithm cipher, ByteView secret);

    void countUp();
    /// The text padded and encrypted with the initial vector that belongs to the counter.
    [[nodiscard]] Bytes encrypted(ByteView text) const;
    /// Absent for what is not whole blocks or not padded.
    [[nodiscard]] std::optional<Bytes> decrypted(ByteView cipherText) const;
    /// The check value of data objects under the counter; `head` is a command's padded header, empty for a response.
    [[nodiscard]] Bytes checksum(ByteView head, ByteView objects) const;
};

} // namespace kelvara::chip
