#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/access/SecurityInfos.h"

namespace kelvara::chip {

/// One of the chip's static keys with the cipher that it is to be used with.
struct ChipAuthenticationSelection
{
    PublicKey key;
    CipherAlgorithm cipher = CipherAlgorithm::TripleDES;
    Bytes keyId; ///< Empty where the chip has a single key and does not name it.

    /// The contents of the object identifier.
    [[nodiscard]] Bytes identifier() const;
};

/// The best usable key of DG14: the longest cipher key, curves before prime fields. Where no info tells the
/// cipher it is triple DES, as the first chips with this protocol meant it. Absent when there is none.
[[nodiscard]] std::optional<ChipAuthenticationSelection> chooseChipAuthentication(const SecurityInfos& dataGroup14);

/// Chip authentication (ICAO Doc 9303-11 §6.2), the terminal's side. Its commands go through the session there was
/// before; the session it agrees replaces that one. The chip is proven to hold the key only when it answers the first
/// command of the new session rightly, and to be genuine only if the key came from a DG14 that passive authentication
/// has found genuine.
class ChipAuthentication final : public AccessProtocol
{
public:
    explicit ChipAuthentication(ChipAuthenticationSelection selection, const RandomSource& random = secureRandom());

private:
    void advance(const ResponseApdu& response) override;

    ChipAuthenticationSelection m_selection;
    KeyPair m_pair;
    bool m_isKeySent = false;
};

} // namespace kelvara::chip
