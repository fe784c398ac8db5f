#pragma once

#include "Platform/Vision/CardSearch.h"

namespace kelvara {

/// What tells a card from other quadrilaterals, in numbers of like size. Internal.
using CardFeatures = std::array<float, 17>;

[[nodiscard]] CardFeatures featuresOf(const CardCandidate& candidate);

/// Log odds that the candidate is a card's outline: above 0 it is more likely than not.
[[nodiscard]] float score(const CardCandidate& candidate);

} // namespace kelvara
