#pragma once

#include <opencv2/core/types.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara {

/// A quadrilateral's corners: top left, top right, bottom right, bottom left. Internal. Coordinates are continuous
/// (the centre of pixel 0 is at 0.5), so that going from one pyramid level to another is a mere factor.
using Quad = std::array<cv::Point2f, 4>;

/// A line that runs along one axis: position across = `offset` + `slope` · position along.
struct SideLine
{
    float offset = 0;
    float slope = 0;

    [[nodiscard]] float at(float along) const { return offset + slope * along; }
};

/// Where a roughly horizontal line (y of x) and a roughly vertical one (x of y) meet.
[[nodiscard]] inline cv::Point2f meeting(const SideLine& horizontal, const SideLine& vertical)
{
    const float x = (vertical.offset + vertical.slope * horizontal.offset) / (1 - vertical.slope * horizontal.slope);
    return { x, horizontal.at(x) };
}

[[nodiscard]] inline float distance(cv::Point2f a, cv::Point2f b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// Means of opposite sides.
struct QuadSize
{
    float width;
    float height;

    explicit QuadSize(const Quad& quad)
        : width((distance(quad[0], quad[1]) + distance(quad[3], quad[2])) / 2),
          height((distance(quad[0], quad[3]) + distance(quad[1], quad[2])) / 2)
    { }

    [[nodiscard]] float shortSide() const { return std::min(width, height); }
    /// Long side over short side.
    [[nodiscard]] float aspect() const { return std::max(width, height) / std::max(shortSide(), 1e-3F); }
};

} // namespace kelvara
