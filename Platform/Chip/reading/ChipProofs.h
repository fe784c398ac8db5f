#pragma once

#include "Platform/Chip/reading/FileFetcher.h"

namespace kelvara::chip {

/// Has the chip prove that it is no copy: chip authentication with a key of DG14, active authentication with the one of
/// DG15, each once a read. What the chip has announced under signature it must do. The reader's thread only.
class ChipProofs
{
public:
    explicit ChipProofs(ReadState& state) : m_state(state) { } ///< Borrowed.

    /// Once DG14 is on the shelf, or known to be missing. The line goes on with the session that was agreed.
    [[nodiscard]] std::optional<ReadStop> authenticateChip(ChipLine& line);
    /// Once DG15 is on the shelf, or known to be missing.
    [[nodiscard]] std::optional<ReadStop> authenticateActively(ChipLine& line);

private:
    [[nodiscard]] std::optional<ReadStop> tryNewSession(ChipLine& line);

    ReadState& m_state;
};

} // namespace kelvara::chip
