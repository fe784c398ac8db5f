#pragma once

#include "Platform/Foundation/Export.h"

#include <optional>
#include <set>
#include <string_view>

namespace kelvara::chip::software {

/// What is false about a chip. Several at once are possible.
enum class Forgery {
    ChangedDG1, ///< The holder's name was changed after signing.
    ChangedDG2, ///< The portrait was replaced after signing.
    SwappedSecurityObject, ///< EF.SOD is genuine and another document's.
    ForeignSigner, ///< A self-made authority of the true one's name signed everything.
    ActiveAuthenticationClone, ///< DG15 was copied; the chip signs with a key of its own.
    ChipAuthenticationClone, ///< DG14 was copied; the chip agrees with a private key of its own.
    RefusesChipAuthentication, ///< The chip answers 6A88 to the chip authentication that its DG14 announces.
    RefusesActiveAuthentication, ///< The chip answers 6D00 to the active authentication that its DG15 announces.
    PaceHidden, ///< EF.CardAccess is not there, while DG14 announces PACE; BAC is open.
    PaceStripped, ///< EF.CardAccess is there without its PACE infos, while DG14 has them; BAC is open.
    QuietCom, ///< EF.COM does not name DG14 and DG15, so that nobody asks for the chip's proofs.
    MissingDG15, ///< DG15 is not there, though its hash is signed.
    UndecodablePortrait, ///< DG2 is signed, but its picture is no picture.
    ForeignDG1, ///< Everything is signed, but for another document than the one whose key opens the chip.
};

using Forgeries = std::set<Forgery>;

/// "changedDG1" and so on, as files of profiles write them.
[[nodiscard]] KELVARA_EXPORT std::string_view nameOf(Forgery forgery);
[[nodiscard]] KELVARA_EXPORT std::optional<Forgery> forgeryOfName(std::string_view name);

} // namespace kelvara::chip::software
