#pragma once

#include "Platform/Chip/crypto/BlockCipher.h"
#include "Platform/Chip/crypto/KeyAgreementGroup.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// How the nonce becomes a generator (ICAO Doc 9303-11 §4.4.3.3).
enum class PaceMapping { Generic, Integrated, ChipAuthentication };

/// What a PACE object identifier says (ICAO Doc 9303-11 §9.2.3).
struct KELVARA_EXPORT PaceProtocol
{
    KeyAgreementGroup::Kind agreement = KeyAgreementGroup::Kind::ECDH;
    PaceMapping mapping = PaceMapping::Generic;
    CipherAlgorithm cipher = CipherAlgorithm::AES128;

    bool operator==(const PaceProtocol&) const = default;

    /// The contents of the object identifier.
    [[nodiscard]] Bytes identifier() const;
    /// Absent for identifiers that name no such protocol.
    [[nodiscard]] static std::optional<PaceProtocol> fromIdentifier(ByteView contents);
};

/// The cipher that the last arc of PACE and chip authentication identifiers names; absent for others.
[[nodiscard]] KELVARA_EXPORT std::optional<CipherAlgorithm> cipherFromArc(std::uint8_t arc);
[[nodiscard]] KELVARA_EXPORT std::uint8_t arcOf(CipherAlgorithm cipher);

/// The kind and mapping that the arc before the last names.
[[nodiscard]] KELVARA_EXPORT std::optional<PaceProtocol> paceMappingFromArc(std::uint8_t arc);

/// bsi-de protocols(2) smartcard(2): what the identifiers of PACE (4), chip authentication (3) and its keys (1) begin
/// with.
[[nodiscard]] KELVARA_EXPORT Bytes smartcardIdentifier(std::initializer_list<std::uint8_t> arcs);

} // namespace kelvara::chip
