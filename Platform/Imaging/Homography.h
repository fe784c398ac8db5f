#pragma once

#include <QPointF>
#include <QSize>

#include <array>
#include <optional>

namespace kelvara::imaging {

/// Four corners of a quadrilateral, origin bottom-left.
struct Quad
{
    QPointF topLeft;
    QPointF topRight;
    QPointF bottomLeft;
    QPointF bottomRight;
};

/// A projective map of the plane: (x, y) ↦ ((ax + by + c) / w, (dx + ey + f) / w) with w = gx + hy + 1.
struct Homography
{
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 0;
    double e = 1;
    double f = 0;
    double g = 0;
    double h = 0;

    [[nodiscard]] QPointF map(double x, double y) const
    {
        const double w = g * x + h * y + 1.0;
        return { (a * x + b * y + c) / w, (d * x + e * y + f) / w };
    }
};

/// The size of the upright rectangle that a quadrilateral shows: the longer of top and bottom edge by the longer of
/// left and right edge, in whole pixels, so that no part of it loses detail. Absent for a quadrilateral that is no
/// rectangle's picture: not finite, not convex, with coinciding or (nearly) collinear corners, or larger than 16384.
[[nodiscard]] std::optional<QSize> uprightSize(const Quad& quad);

/// Maps the rectangle (0, 0, size), origin bottom-left, onto a quadrilateral that has an `uprightSize`.
[[nodiscard]] Homography rectangleToQuad(const QSize& size, const Quad& quad);

} // namespace kelvara::imaging
