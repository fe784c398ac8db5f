#pragma once

#include "Platform/Chip/crypto/BlockCipher.h"

namespace kelvara::chip {

/// What a derived key is for (the counter of ICAO Doc 9303-11 §9.7.1).
enum class KeyUse { Encryption = 1, Authentication = 2, Password = 3 };

/// The key derivation function of ICAO Doc 9303-11 §9.7.1. DES keys have odd parity.
[[nodiscard]] Bytes deriveKey(CipherAlgorithm algorithm, ByteView sharedSecret, KeyUse use);

} // namespace kelvara::chip
