#pragma once

#include "Platform/Chip/Bytes.h"

#include <optional>

namespace kelvara::chip::software {

/// The AlgorithmIdentifier that spells out what a number of standardised domain parameters stands for (0 to 2, 8 to
/// 18): an elliptic curve with everything explicit, or X9.42 Diffie-Hellman. Absent for other numbers.
[[nodiscard]] std::optional<Bytes> explicitAlgorithm(unsigned parameterId);

} // namespace kelvara::chip::software
