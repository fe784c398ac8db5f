#pragma once

#include "Platform/Chip/crypto/KeyAgreementGroup.h"

namespace kelvara::chip {

/// The standardised domain parameters of ICAO Doc 9303-11 §9.5.1: 0 to 2 (RFC 5114), 8 to 18 (NIST and Brainpool
/// curves); null for all other numbers.
[[nodiscard]] GroupPointer standardizedGroup(unsigned identifier);

/// The group an AlgorithmIdentifier names or spells out: standardised domain parameters, id-ecPublicKey with a named or
/// explicit curve, X9.42 and PKCS #3 Diffie-Hellman. `encoded` is the whole SEQUENCE; null for anything else.
[[nodiscard]] GroupPointer groupFromAlgorithm(ByteView encoded);

/// The public element of a SubjectPublicKeyInfo together with its group.
struct PublicKey
{
    GroupPointer group;
    Bytes element;
};
/// Absent for bytes that are no such key, or whose element is none of its group.
[[nodiscard]] std::optional<PublicKey> publicKeyFromInfo(ByteView subjectPublicKeyInfo);

} // namespace kelvara::chip
