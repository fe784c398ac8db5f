#pragma once

#include "Platform/Chip/reading/FileFetcher.h"

namespace kelvara::chip {

/// Opens the way to a document's files (ICAO Doc 9303-11 §4.2): PACE where the chip offers it, BAC where it does not,
/// nothing on a chip that asks for nothing. Leaves the document's application selected. The reader's thread only.
class AccessOpening
{
public:
    /// Both are borrowed.
    AccessOpening(ReadState& state, FileFetcher& fetcher) : m_state(state), m_fetcher(fetcher) { }

    [[nodiscard]] std::optional<ReadStop> open(ChipLine& line);

private:
    [[nodiscard]] std::optional<ReadStop> learnOffers(ChipLine& line);
    [[nodiscard]] std::optional<ReadStop> openByPace(ChipLine& line, const std::vector<PaceSelection>& selections);
    [[nodiscard]] std::optional<ReadStop> judgeMapping(ChipLine& line, const MappedChipAuthentication& mapped);
    [[nodiscard]] std::optional<ReadStop> selectApplication(ChipLine& line);
    [[nodiscard]] std::optional<ReadStop> openByBac(ChipLine& line);
    [[nodiscard]] ReadStop afterFailure(const AccessFailure& failure, ProtocolOutcome& outcome) const;

    ReadState& m_state;
    FileFetcher& m_fetcher;
};

} // namespace kelvara::chip
