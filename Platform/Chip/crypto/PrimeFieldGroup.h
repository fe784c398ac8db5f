#pragma once

#include "Platform/Chip/crypto/KeyAgreementGroup.h"

namespace kelvara::chip {

/// A group of RFC 5114 by OpenSSL's name for it ("dh_1024_160"); null for a name that is none.
[[nodiscard]] GroupPointer namedPrimeField(const char* name);

/// The numbers that `generator` raises to modulo `prime` (1024 to 4096 bits). `order` may be empty where it was not
/// told: then public values are checked by their range only, and nothing can be mapped. Null for numbers that fit
/// badly.
[[nodiscard]] GroupPointer primeField(ByteView prime, ByteView order, ByteView generator);

} // namespace kelvara::chip
