#include "Platform/Imaging/Homography.h"

#include <algorithm>
#include <cmath>

namespace kelvara::imaging {

namespace {

constexpr double kLargest = 16384;
constexpr double kShortestEdge = 0.5;
constexpr double kSmallestSine = 0.01; // about half a degree

double length(const QPointF& vector)
{
    return std::hypot(vector.x(), vector.y());
}

double cross(const QPointF& first, const QPointF& second)
{
    return first.x() * second.y() - first.y() * second.x();
}

bool isFinite(const QPointF& point)
{
    // Far beyond any picture, but near enough for products not to overflow.
    constexpr double farthest = 1e9;
    return std::abs(point.x()) <= farthest && std::abs(point.y()) <= farthest;
}

/// All corners turn the same way, none of them by (nearly) nothing. Either way round: a quadrilateral may be named
/// mirrored.
bool isProperlyConvex(const std::array<QPointF, 4>& corners)
{
    int left = 0;
    int right = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const QPointF in = corners[(i + 1) % 4] - corners[i];
        const QPointF out = corners[(i + 2) % 4] - corners[(i + 1) % 4];
        const double sine = cross(in, out) / (length(in) * length(out));
        if (length(in) < kShortestEdge || !(std::abs(sine) >= kSmallestSine))
            return false;
        ++(sine > 0 ? left : right);
    }
    return left == 4 || right == 4;
}

} // namespace

std::optional<QSize> uprightSize(const Quad& quad)
{
    const std::array corners { quad.bottomLeft, quad.bottomRight, quad.topRight, quad.topLeft };
    if (!std::all_of(corners.begin(), corners.end(), isFinite) || !isProperlyConvex(corners))
        return std::nullopt;
    const double width = std::max(length(quad.topRight - quad.topLeft), length(quad.bottomRight - quad.bottomLeft));
    const double height = std::max(length(quad.topLeft - quad.bottomLeft), length(quad.topRight - quad.bottomRight));
    if (width > kLargest || height > kLargest)
        return std::nullopt;
    return QSize(std::max(1, int(std::lround(width))), std::max(1, int(std::lround(height))));
}

Homography rectangleToQuad(const QSize& size, const Quad& quad)
{
    // The unit square's map in closed form, then the square stretched to the rectangle.
    const QPointF& origin = quad.bottomLeft;
    const QPointF bend = origin - quad.bottomRight + quad.topRight - quad.topLeft;
    const QPointF right = quad.bottomRight - quad.topRight;
    const QPointF top = quad.topLeft - quad.topRight;
    const double area = cross(right, top);
    const double g = cross(bend, top) / area;
    const double h = cross(right, bend) / area;
    const QPointF alongX = quad.bottomRight - origin + g * quad.bottomRight;
    const QPointF alongY = quad.topLeft - origin + h * quad.topLeft;
    const double w = size.width();
    const double t = size.height();
    return { alongX.x() / w, alongY.x() / t, origin.x(), alongX.y() / w, alongY.y() / t, origin.y(), g / w, h / t };
}

} // namespace kelvara::imaging
