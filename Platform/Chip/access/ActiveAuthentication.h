#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/access/SecurityInfos.h"

namespace kelvara::chip {

/// Active authentication (ICAO Doc 9303-11 §6.1), the terminal's side: the chip signs a challenge. It agrees no session
/// and goes through the one there is. Success proves the chip genuine only if DG15 (and DG14) were found genuine by
/// passive authentication. RSA signs by ISO/IEC 9796-2 scheme 1, curves by plain ECDSA.
class ActiveAuthentication final : public AccessProtocol
{
public:
    /// `publicKeyInfo` is the SubjectPublicKeyInfo in DG15's 6F; `info` is what DG14 says of the digest for ECDSA,
    /// where it says so. `expected` is the greatest length of answer to ask for: 256, or more where a longer key and
    /// the card allow extended lengths.
    ActiveAuthentication(ByteView publicKeyInfo, std::optional<ActiveAuthenticationInfo> info,
        std::uint32_t expected = 256, const RandomSource& random = secureRandom());

private:
    void advance(const ResponseApdu& response) override;

    Bytes m_publicKeyInfo;
    std::optional<ActiveAuthenticationInfo> m_info;
    Bytes m_challenge;
};

} // namespace kelvara::chip
