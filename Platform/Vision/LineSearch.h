#pragma once

#include "Platform/Vision/EdgeField.h"
#include "Platform/Vision/Quad.h"

#include <vector>

namespace kelvara {

/// A line that may hold one side of a card, with the edge evidence along it. Internal.
struct LineCandidate
{
    SideLine line;
    float score = 0; ///< Evidence of the best stretch, in pixels of full support.
    /// Sums of the support (0…1 a column) left of every column; one longer than the field.
    std::vector<float> support;

    /// Mean support between two places along the line (limited to the field; 0 for an empty stretch).
    [[nodiscard]] float meanSupport(float from, float to) const;
};

/// The lines of a field that look most like long sides of something, the best first; `atMost` of them.
[[nodiscard]] std::vector<LineCandidate> findLines(const EdgeField& field, std::size_t atMost);

} // namespace kelvara
