#pragma once

#include "Platform/Chip/access/PacePassword.h"
#include "Platform/Chip/access/PaceSelection.h"
#include "Platform/Chip/software/ChipKeyAgreement.h"
#include "Platform/Chip/software/ChipProfile.h"
#include "Platform/Chip/software/ChipSigner.h"

#include <variant>

namespace kelvara::chip::software {

/// The keys of a chip, fresh ones, and what its files tell of them. A value.
struct ChipSecrets
{
    std::vector<PaceSelection> paceOffers;
    KeyPair staticKey; ///< Of the chip authentication mapping; empty without it. EF.CardSecurity tells of it.
    std::vector<ChipKeyAgreement::Key> agreementKeys;
    std::optional<ChipSigner> signer;

    // Sets of SecurityInfo, each info by itself.
    std::vector<Bytes> paceInfos;
    std::vector<Bytes> chipAuthenticationInfos;
    std::vector<Bytes> activeAuthenticationInfos;
    Bytes activeAuthenticationKey; ///< DG15's content; empty: there is none.

    /// By the profile's protocols and the forgeries that concern keys; else a sentence about what cannot be.
    [[nodiscard]] static std::variant<ChipSecrets, QString> of(const ChipProfile& profile);
};

} // namespace kelvara::chip::software
