#pragma once

#include "Platform/Chip/crypto/BlockCipher.h"

namespace kelvara::chip {

/// Bytes of every message authentication code below.
inline constexpr std::size_t macSize = 8;

/// With triple DES the retail MAC (ISO/IEC 9797-1 algorithm 3, padding method 2 applied here); with AES the CMAC cut to
/// eight bytes (nothing padded here beyond what CMAC itself does).
[[nodiscard]] Bytes messageAuthenticationCode(CipherAlgorithm algorithm, ByteView key, ByteView message);

} // namespace kelvara::chip
