#pragma once

#include "Platform/Chip/access/PaceProtocol.h"
#include "Platform/Chip/crypto/SignatureKey.h"
#include "Platform/Chip/lds/DataGroup11.h"
#include "Platform/Chip/lds/DataGroup12.h"
#include "Platform/Chip/lds/DataGroup16.h"
#include "Platform/Chip/lds/FaceRecord.h"
#include "Platform/Chip/software/ChipFaults.h"
#include "Platform/Chip/software/ChipFiles.h"
#include "Platform/Chip/software/Forgery.h"
#include "Platform/Chip/software/TestAuthority.h"

#include <QImage>
#include <QStringList>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kelvara::chip::software {

/// One way to do PACE that a chip offers. Parameters are the standardised ones of ICAO Doc 9303-11 §9.5.1.
struct PaceOffer
{
    PaceMapping mapping = PaceMapping::Generic; ///< The chip authentication mapping has curves and AES only.
    unsigned parameterId = 13; ///< brainpoolP256r1
    CipherAlgorithm cipher = CipherAlgorithm::AES128;
};

/// A static key for chip authentication.
struct ChipAuthenticationKey
{
    unsigned parameterId = 13; ///< As above.
    CipherAlgorithm cipher = CipherAlgorithm::AES128;
    /// DG14 spells the key's parameters out, as most states' chips do, instead of naming the number.
    bool hasExplicitParameters = false;
};

/// The key for active authentication: the one that is given, else a fresh one.
struct ActiveAuthenticationKey
{
    std::optional<SignatureKey> key; ///< With its private part. RSA keys take long to make: chips may share one.
    unsigned rsaBits = 1024; ///< 1024 to 4096, whole bytes. Longer than 1536, answers need extended length.
    std::string curve; ///< Instead of RSA: a curve by its usual short name ("brainpoolP256r1").
    DigestAlgorithm digest = DigestAlgorithm::SHA256;
    bool hasShortTrailer = false; ///< RSA with SHA-1 only: the trailer of one byte.
};

/// What the holder's portrait is made of.
struct PortraitOptions
{
    QImage picture; ///< Null: a neutral silhouette is drawn.
    ImageKind kind = ImageKind::Jpeg2000;
    int quality = 75; ///< As in `encodePortrait`.
    std::optional<Bytes> encoded; ///< Taken as it is instead, whatever it is.
};

/// What a chip in software is made of. What is not said here is as in a common identity card: BAC and PACE open it,
/// chip authentication proves it, everything is signed. A value.
struct ChipProfile
{
    /// Without: a card of another kind, which refuses the application's identifier. Nothing else counts then.
    bool isPassport = true;

    /// The lines of the machine-readable zone (DG1). The access key is derived from them.
    QStringList zone { QStringLiteral("I<UTOD231458907<<<<<<<<<<<<<<<"),
        QStringLiteral("7408122F3204153UTO<<<<<<<<<<<2"), QStringLiteral("ERIKSSON<<ANNA<MARIA<<<<<<<<<<") };
    std::optional<PortraitOptions> portrait = PortraitOptions {}; ///< DG2; absent: there is none.
    QImage signature; ///< DG7; null: there is none.
    std::optional<DataGroup11> details;
    std::optional<DataGroup12> document;
    std::vector<PersonToNotify> persons; ///< DG16; empty: there is none.
    bool hasAtrInfo = false; ///< EF.ATR/INFO, which tells the lengths that the chip takes.
    /// Files by their identifier, in place of those that are made from the above or in addition to them; absent content
    /// leaves a file out. Signed like all others.
    std::map<DataGroupId, std::optional<Bytes>> files;
    /// The same after everything was signed.
    std::map<DataGroupId, std::optional<Bytes>> filesAfterSigning;

    bool hasAccessControl = true; ///< Without: everything is open, neither BAC nor PACE are there.
    bool hasBac = true;
    std::vector<PaceOffer> pace { PaceOffer {} }; ///< In EF.CardAccess and DG14. Empty: there is no PACE.
    std::optional<std::string> cardAccessNumber; ///< Digits; a password for PACE beside the zone's.
    /// Empty: there is none. Several get numbers. A chip with PACE's chip authentication mapping has its static key
    /// here too; where the list has none of that group, one is added.
    std::vector<ChipAuthenticationKey> chipAuthentication { ChipAuthenticationKey {} };
    std::optional<ActiveAuthenticationKey> activeAuthentication; ///< Absent: there is none.

    std::optional<TestAuthority> authority; ///< Who issues; absent: one is made by the options.
    AuthorityOptions authorityOptions;
    SecurityObjectOptions securityObject;

    ReadingManners reading;
    bool announcesExtendedLength = true; ///< In the answer to reset (and EF.ATR/INFO).
    bool acceptsExtendedLength = true; ///< Else commands of extended length are refused with 6700.

    Forgeries forgeries;
    ChipFaults faults;
};

} // namespace kelvara::chip::software
