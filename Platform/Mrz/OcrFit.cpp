#include "Platform/Mrz/OcrFit.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace kelvara::ocr {

namespace {

constexpr std::size_t kEnoughForBend = 16;

Curve leastSquares(std::span<const double> xs, std::span<const double> ys, const std::vector<std::size_t>& used)
{
    Curve curve;
    if (used.empty())
        return curve;
    for (const std::size_t i : used)
        curve.origin += xs[i] / double(used.size());
    double spread = 1;
    for (const std::size_t i : used)
        spread = std::max(spread, std::abs(xs[i] - curve.origin));
    cv::Matx33d normal = cv::Matx33d::zeros();
    cv::Vec3d right;
    const int terms = used.size() >= kEnoughForBend ? 3 : used.size() >= 2 ? 2 : 1;
    for (const std::size_t i : used) {
        const double t = (xs[i] - curve.origin) / spread;
        const cv::Vec3d powers(1, t, t * t);
        normal += powers * powers.t();
        right += powers * ys[i];
    }
    for (int i = terms; i < 3; ++i) {
        for (int k = 0; k < 3; ++k)
            normal(i, k) = normal(k, i) = 0;
        normal(i, i) = 1;
        right[i] = 0;
    }
    const cv::Vec3d solution = normal.solve(right, cv::DECOMP_SVD);
    curve.a = solution[0];
    curve.b = solution[1] / spread;
    curve.c = solution[2] / (spread * spread);
    return curve;
}

} // namespace

double Curve::inverse(double y, double guess) const
{
    double x = guess;
    for (int i = 0; i < 8 && std::abs(slope(x)) > 1e-9; ++i)
        x -= (at(x) - y) / slope(x);
    return std::isfinite(x) && std::abs(x - guess) < 1000 ? x : guess;
}

Curve fitCurve(std::span<const double> xs, std::span<const double> ys, double tolerance)
{
    std::vector<std::size_t> all(xs.size());
    std::iota(all.begin(), all.end(), std::size_t { 0 });
    Curve curve = leastSquares(xs, ys, all);
    for (int round = 0; round < 3; ++round) {
        std::vector<std::size_t> near;
        std::copy_if(all.begin(), all.end(), std::back_inserter(near),
            [&](std::size_t i) { return std::abs(curve.at(xs[i]) - ys[i]) < tolerance; });
        if (near.size() < std::max<std::size_t>(4, all.size() / 3))
            break;
        curve = leastSquares(xs, ys, near);
    }
    return curve;
}

} // namespace kelvara::ocr
