#pragma once

#include "Platform/Chip/software/ChipProfile.h"

#include <sstream>
#include <string>
#include <vector>

/// The kinds of chips that ICAO Doc 9303-11 allows, for reads of each of them.
namespace kelvara::evaluate {

using namespace chip;
using namespace chip::software;

/// One way into a chip, one proof by chip authentication, one by active authentication.
struct ChipKind
{
    std::string name;
    ChipProfile profile;
};

/// A part of a kind: what it changes in the profile.
struct ChipTrait
{
    std::string name;
    std::function<void(ChipProfile&)> apply;
};

inline const char* nameOfCipher(CipherAlgorithm cipher)
{
    static constexpr const char* kNames[] = { "3DES", "AES-128", "AES-192", "AES-256" };
    return kNames[static_cast<int>(cipher)];
}

inline constexpr unsigned kGroups[] = { 0, 1, 2, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18 };
inline constexpr unsigned kFirstCurve = 8;
inline constexpr unsigned kNistP224 = 10; // its prime has no integrated mapping

/// None, BAC, and PACE of every mapping, group and cipher: 143.
inline std::vector<ChipTrait> accessTraits()
{
    std::vector<ChipTrait> traits {
        { "open", [](ChipProfile& profile) { profile.hasAccessControl = false; } },
        { "BAC", [](ChipProfile& profile) { profile.pace.clear(); } },
    };
    static constexpr const char* kMappings[] = { "GM", "IM", "CAM" };
    for (const PaceMapping mapping :
        { PaceMapping::Generic, PaceMapping::Integrated, PaceMapping::ChipAuthentication }) {
        const bool isCam = mapping == PaceMapping::ChipAuthentication;
        for (const unsigned group : kGroups) {
            if ((isCam && group < kFirstCurve) || (mapping == PaceMapping::Integrated && group == kNistP224))
                continue;
            for (int cipher = isCam ? 1 : 0; cipher < 4; ++cipher) {
                const PaceOffer offer { mapping, group, static_cast<CipherAlgorithm>(cipher) };
                std::ostringstream name;
                name << "PACE-" << kMappings[static_cast<int>(mapping)] << '-' << group << '-'
                     << nameOfCipher(offer.cipher);
                traits.push_back({ name.str(), [offer](ChipProfile& profile) {
                                      profile.pace = { offer };
                                      profile.hasBac = false;
                                  } });
            }
        }
    }
    return traits;
}

inline ChipTrait chipAuthenticationTrait(unsigned group, CipherAlgorithm cipher, bool isExplicit)
{
    std::ostringstream name;
    name << "CA-" << group << '-' << nameOfCipher(cipher) << (isExplicit ? "-explicit" : "");
    return { name.str(), [=](ChipProfile& profile) {
                profile.chipAuthentication = { { group, cipher, isExplicit } };
            } };
}

/// None, and Diffie-Hellman and a curve with every cipher: 9.
inline std::vector<ChipTrait> chipAuthenticationKinds()
{
    std::vector<ChipTrait> traits {
        { "no CA", [](ChipProfile& profile) { profile.chipAuthentication.clear(); } },
    };
    for (const unsigned group : { 2U, 13U }) {
        for (int cipher = 0; cipher < 4; ++cipher)
            traits.push_back(chipAuthenticationTrait(group, static_cast<CipherAlgorithm>(cipher), group == 13));
    }
    return traits;
}

/// Every group and cipher, named and spelled out: 112.
inline std::vector<ChipTrait> chipAuthenticationKeys()
{
    std::vector<ChipTrait> traits;
    for (const unsigned group : kGroups) {
        for (int cipher = 0; cipher < 4; ++cipher) {
            for (const bool isExplicit : { false, true })
                traits.push_back(chipAuthenticationTrait(group, static_cast<CipherAlgorithm>(cipher), isExplicit));
        }
    }
    return traits;
}

/// A key made once for all: RSA keys take long.
inline ChipTrait activeAuthenticationTrait(
    const std::string& name, const SignatureKey& key, DigestAlgorithm digest, bool hasShortTrailer = false)
{
    ActiveAuthenticationKey wish;
    wish.key = key;
    wish.digest = digest;
    wish.hasShortTrailer = hasShortTrailer;
    return { name, [wish](ChipProfile& profile) { profile.activeAuthentication = wish; } };
}

/// None, RSA, a curve: 3.
inline std::vector<ChipTrait> activeAuthenticationKinds()
{
    return { { "no AA", [](ChipProfile& profile) { profile.activeAuthentication.reset(); } },
        activeAuthenticationTrait("AA-RSA", *SignatureKey::generateRsa(1024), DigestAlgorithm::SHA1, true),
        activeAuthenticationTrait("AA-ECDSA", *SignatureKey::generateEc("brainpoolP256r1"), DigestAlgorithm::SHA256) };
}

/// Every length, curve and digest: RSA of 1024 to 4096 bits, eight curves.
inline std::vector<ChipTrait> activeAuthenticationKeys()
{
    using enum DigestAlgorithm;
    struct Digest
    {
        const char* name;
        DigestAlgorithm algorithm;
    };
    static constexpr Digest kDigests[] = { { "SHA-1", SHA1 }, { "SHA-224", SHA224 }, { "SHA-256", SHA256 },
        { "SHA-384", SHA384 }, { "SHA-512", SHA512 } };
    std::vector<ChipTrait> traits;
    for (const unsigned bits : { 1024U, 1280U, 1536U, 1848U, 2048U, 3072U, 4096U }) {
        const SignatureKey key = *SignatureKey::generateRsa(bits);
        const std::string prefix = "AA-RSA-" + std::to_string(bits) + '-';
        traits.push_back(activeAuthenticationTrait(prefix + "SHA-1-short", key, SHA1, true));
        for (const Digest& digest : kDigests)
            traits.push_back(activeAuthenticationTrait(prefix + digest.name, key, digest.algorithm));
    }
    for (const char* curve : { "prime256v1", "secp384r1", "secp521r1", "brainpoolP224r1", "brainpoolP256r1",
             "brainpoolP320r1", "brainpoolP384r1", "brainpoolP512r1" }) {
        const SignatureKey key = *SignatureKey::generateEc(curve);
        for (const Digest& digest : kDigests)
            traits.push_back(
                activeAuthenticationTrait(std::string("AA-") + curve + '-' + digest.name, key, digest.algorithm));
    }
    return traits;
}

} // namespace kelvara::evaluate
