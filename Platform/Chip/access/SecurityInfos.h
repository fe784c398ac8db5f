#pragma once

#include "Platform/Chip/access/PaceProtocol.h"
#include "Platform/Chip/crypto/Digest.h"
#include "Platform/Chip/crypto/DomainParameters.h"

#include <optional>
#include <vector>

namespace kelvara::chip {

struct PaceInfo
{
    PaceProtocol protocol;
    std::optional<unsigned> parameterId;
};

struct PaceDomainParameterInfo
{
    KeyAgreementGroup::Kind agreement = KeyAgreementGroup::Kind::ECDH;
    PaceMapping mapping = PaceMapping::Generic;
    GroupPointer group;
    std::optional<unsigned> parameterId;
};

struct ChipAuthenticationInfo
{
    KeyAgreementGroup::Kind agreement = KeyAgreementGroup::Kind::ECDH;
    CipherAlgorithm cipher = CipherAlgorithm::TripleDES;
    Bytes keyId; ///< The INTEGER's contents; empty where none is given.
};

struct ChipAuthenticationPublicKeyInfo
{
    PublicKey key;
    Bytes keyId; ///< The INTEGER's contents; empty where none is given.
};

struct ActiveAuthenticationInfo
{
    DigestAlgorithm digest = DigestAlgorithm::SHA256; ///< Of plain ECDSA signatures.
};

/// What a chip tells about its protocols (ICAO Doc 9303-11 §9.2), as far as it is known here: infos of unknown
/// protocols, versions, curves or shapes are left out.
struct SecurityInfos
{
    std::vector<PaceInfo> pace;
    std::vector<PaceDomainParameterInfo> paceDomainParameters;
    std::vector<ChipAuthenticationInfo> chipAuthentication;
    std::vector<ChipAuthenticationPublicKeyInfo> chipAuthenticationKeys;
    std::optional<ActiveAuthenticationInfo> activeAuthentication;

    /// From a SET of SecurityInfo by itself (EF.CardAccess, what EF.CardSecurity signs) or within DG14's 6E. Absent for
    /// bytes that are none, or one of absurdly many infos. Trailing bytes are passed over: some chips pad their files.
    [[nodiscard]] static std::optional<SecurityInfos> parsed(ByteView file);

    /// From the whole EF.CardSecurity. Its signature is not looked at here: what comes out is as true as passive
    /// authentication finds the file.
    [[nodiscard]] static std::optional<SecurityInfos> fromCardSecurity(ByteView file);
};

} // namespace kelvara::chip
