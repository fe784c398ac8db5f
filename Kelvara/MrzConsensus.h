#pragma once

#include "Platform/Mrz/MrzLineReading.h"

#include <vector>

namespace kelvara {

/// What several readings of the same lines agree upon: in each place the character that they are most certain of
/// together. Where they differ, the certainty is the share of the winner and the others are alternatives; agreement
/// adds none, as the readings are of one picture. Readings of another shape (lines, characters) than most of them are
/// left out. Empty for no readings.
[[nodiscard]] std::vector<MrzLineReading> consensusOf(const std::vector<std::vector<MrzLineReading>>& readings);

} // namespace kelvara
