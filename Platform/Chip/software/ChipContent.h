#pragma once

#include "Platform/Chip/software/ChipSecrets.h"
#include "Platform/Chip/software/ZoneText.h"

namespace kelvara::chip::software {

/// All that a chip in software holds: its files as a reader finds them, forgeries included, and its keys. A value.
struct ChipContent
{
    ZoneText zone; ///< Whose key opens the chip.
    std::map<DataGroupId, Bytes> files;
    ChipSecrets secrets;
    std::vector<PacePassword> passwords;
    TestAuthority authority; ///< Who signed, or would have signed but for a forgery.

    /// Makes, signs and forges; else a sentence about what cannot be.
    [[nodiscard]] static std::variant<ChipContent, QString> of(const ChipProfile& profile);
};

} // namespace kelvara::chip::software
