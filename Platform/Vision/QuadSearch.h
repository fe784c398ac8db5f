#pragma once

#include "Platform/Vision/LineSearch.h"

namespace kelvara {

struct RectangleLimits;

/// Four lines that may be a card's sides. Internal.
struct QuadCandidate
{
    Quad corners;
    std::array<const LineCandidate*, 4> sides {}; ///< Top, right, bottom, left.
    float score = 0; ///< Edge support along the sides: the more, the longer and the more even, the better.
};

/// The best quadrilaterals of two sets of lines within the limits (with a little room for what the coarse lines are
/// off), no two of them nearly the same; `atMost` of them, the best first.
/// @param imageSize size of the plane that the lines were found on
[[nodiscard]] std::vector<QuadCandidate> findQuads(const std::vector<LineCandidate>& horizontal,
    const std::vector<LineCandidate>& vertical, cv::Size2f imageSize, const RectangleLimits& limits,
    std::size_t atMost);

} // namespace kelvara
