#pragma once

#include "Platform/Chip/Bytes.h"

namespace kelvara::chip {

enum class DigestAlgorithm { SHA1, SHA224, SHA256, SHA384, SHA512 };

[[nodiscard]] Bytes digest(DigestAlgorithm algorithm, ByteView message);
[[nodiscard]] std::size_t digestSize(DigestAlgorithm algorithm);

} // namespace kelvara::chip
