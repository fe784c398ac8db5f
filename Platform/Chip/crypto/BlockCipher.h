#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <optional>

namespace kelvara::chip {

/// The block ciphers of ICAO Doc 9303-11. Triple DES has two keys (EDE2); parity bits are not looked at.
enum class CipherAlgorithm { TripleDES, AES128, AES192, AES256 };

[[nodiscard]] KELVARA_EXPORT std::size_t keySize(CipherAlgorithm algorithm);
[[nodiscard]] KELVARA_EXPORT std::size_t blockSize(CipherAlgorithm algorithm);

/// CBC without padding. The message is whole blocks and the key fits the algorithm, else the program is wrong and
/// stops; an empty initial vector is one of zeros.
[[nodiscard]] KELVARA_EXPORT Bytes encryptCBC(
    CipherAlgorithm algorithm, ByteView key, ByteView initialVector, ByteView message);
/// The same backwards; absent for a text that is not whole blocks (it comes from outside).
[[nodiscard]] KELVARA_EXPORT std::optional<Bytes> decryptCBC(
    CipherAlgorithm algorithm, ByteView key, ByteView initialVector, ByteView cipherText);

/// A single block by itself (ECB).
[[nodiscard]] KELVARA_EXPORT Bytes encryptBlock(CipherAlgorithm algorithm, ByteView key, ByteView block);

} // namespace kelvara::chip
