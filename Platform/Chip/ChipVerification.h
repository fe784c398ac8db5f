#pragma once

#include "Platform/Chip/trust/PassiveAuthentication.h"

#include <QString>

#include <optional>

namespace kelvara::chip {

/// How one of the chip's protocols went.
enum class ProtocolOutcome {
    NotOffered, ///< The chip does not have it, or the read ended before it was its turn.
    NotSupported, ///< The chip has it with a key or curve that is not known here; nothing is proven either way.
    Succeeded,
    Failed,
};

/// Which proofs a read has gone through, and what came out (ICAO Doc 9303-11). A value.
struct ChipVerification
{
    /// Access control, as the card's last presentation was opened: exactly one of both succeeds in a read that
    /// delivers, none on a chip that asks for none.
    ProtocolOutcome pace = ProtocolOutcome::NotOffered;
    QString paceProtocol; ///< "PACE-ECDH-GM-AES-128", for engineers; empty without PACE.
    ProtocolOutcome bac = ProtocolOutcome::NotOffered;

    /// Proof that the chip is no copy: it holds a private key that belongs to a public one its issuer signed.
    ProtocolOutcome chipAuthentication = ProtocolOutcome::NotOffered;
    /// By the chip authentication mapping, whose success counts as the above where DG14 names the key that it proved. A
    /// key that only EF.CardSecurity names belongs to some chip, but to none of this document's as far as it is known.
    bool isChipAuthenticatedByPace = false;
    ProtocolOutcome activeAuthentication = ProtocolOutcome::NotOffered;

    /// Proof that the data are as the issuer signed them. Absent when the read ended before.
    std::optional<PassiveAuthentication> passiveAuthentication;

    /// The chip's signed data announce an access control that the chip itself kept quiet about: somebody in between
    /// wants the weaker one.
    bool isAccessDowngraded = false;
    /// The chip's own zone is not the one whose key opened it: its data belong to another document.
    bool isForeignDocument = false;

    /// Whether the chip is proven to be no copy.
    [[nodiscard]] bool isChipGenuine() const
    {
        return chipAuthentication == ProtocolOutcome::Succeeded || activeAuthentication == ProtocolOutcome::Succeeded;
    }
};

} // namespace kelvara::chip
