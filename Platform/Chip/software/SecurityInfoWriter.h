#pragma once

#include "Platform/Chip/Bytes.h"

#include <vector>

namespace kelvara::chip {

/// A SecurityInfo: the contents of its identifier and the whole data objects after it.
[[nodiscard]] Bytes securityInfo(ByteView identifier, const std::vector<Bytes>& fields);
/// The SET of them, as EF.CardAccess holds it (DG14 has it in a 6E).
[[nodiscard]] Bytes securityInfos(const std::vector<Bytes>& infos);

/// The AlgorithmIdentifier of standardised domain parameters.
[[nodiscard]] Bytes standardizedAlgorithm(unsigned parameterId);
/// A SubjectPublicKeyInfo of an algorithm and a public key as it stands in the bit string.
[[nodiscard]] Bytes publicKeyInfo(ByteView algorithm, ByteView publicKey);

} // namespace kelvara::chip
