#pragma once

#include "Platform/Chip/reading/ReadState.h"

#include <functional>
#include <map>

namespace kelvara::chip {

/// Brings files from the card to the shelf. The reader's thread only.
class FileFetcher
{
public:
    /// Told after every piece.
    using OnPiece = std::function<void(DataGroupId)>;

    FileFetcher(ReadState& state, OnPiece onPiece) : m_state(state), m_onPiece(std::move(onPiece)) { }

    /// Afterwards the file is on the shelf or given up, unless something is returned. A file that is there already, or
    /// was given up, costs nothing.
    [[nodiscard]] std::optional<ReadStop> fetch(ChipLine& line, DataGroupId id);

private:
    [[nodiscard]] ReadStop afterBreak(const LineFailure& broken, DataGroupId id);

    ReadState& m_state; ///< Borrowed.
    OnPiece m_onPiece;
    std::map<DataGroupId, int> m_endings; ///< How often the chip ended the session over a file.
};

} // namespace kelvara::chip
