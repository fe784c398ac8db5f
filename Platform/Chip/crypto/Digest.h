#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

enum class DigestAlgorithm { SHA1, SHA224, SHA256, SHA384, SHA512 };

[[nodiscard]] KELVARA_EXPORT Bytes digest(DigestAlgorithm algorithm, ByteView message);
[[nodiscard]] KELVARA_EXPORT std::size_t digestSize(DigestAlgorithm algorithm);

} // namespace kelvara::chip
