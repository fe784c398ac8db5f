#pragma once

#include "Platform/Chip/crypto/KeyAgreementGroup.h"

namespace kelvara::chip {

/// A curve by its usual short name ("brainpoolP256r1"); null for a name that is none.
[[nodiscard]] GroupPointer namedCurve(const char* name);

/// A curve from its encoded parameters (RFC 3279 EcpkParameters: a name or everything explicitly). Null for anything
/// but a sound curve over a prime field of 160 to 521 bits: explicit parameters are tried, not believed.
[[nodiscard]] GroupPointer curveFromParameters(ByteView encoded);

} // namespace kelvara::chip
