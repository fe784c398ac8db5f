#pragma once

#include "Platform/Mrz/MrzZone.h"

#include <span>

namespace kelvara {

/// A line brought to its format's length.
struct MrzMendedLine
{
    MrzCells cells;
    std::vector<MrzMark> marks; ///< With the column; the line is the caller's to say.
};

/// So many characters a line may be too short or too long.
inline constexpr int mostMrzLengthError = 2;

/// The line in every way in which it may have lost or gained characters: fillers put into its runs or at one of the
/// columns where a lone filler is expected, fillers taken from its runs, strays cut from its ends. Just the line itself
/// where its length is right; nothing where it is too far off.
/// The likelier ways come last.
[[nodiscard]] std::vector<MrzMendedLine> mendLength(const MrzCells& line, int length, std::span<const int> loneFillers);

/// The same for a line of names: filled at its end, or cut there or at its beginning.
[[nodiscard]] std::vector<MrzMendedLine> mendEnd(const MrzCells& line, int length);

} // namespace kelvara
