#pragma once

#include <span>

namespace kelvara::ocr {

/// y = a + b·t + c·t², with t = x − `origin`.
struct Curve
{
    double origin = 0;
    double a = 0;
    double b = 0;
    double c = 0;

    [[nodiscard]] double at(double x) const
    {
        const double t = x - origin;
        return a + (b + c * t) * t;
    }
    [[nodiscard]] double slope(double x) const { return b + 2 * c * (x - origin); }
    /// The x near `guess` where the curve has this value.
    [[nodiscard]] double inverse(double y, double guess) const;
};

/// Fits a curve to points by least squares, again without those farther away than `tolerance` (while enough are left).
/// Few points make it a straight line or a constant.
[[nodiscard]] Curve fitCurve(std::span<const double> xs, std::span<const double> ys, double tolerance);

} // namespace kelvara::ocr
