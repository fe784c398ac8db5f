#include "Platform/Vision/EdgeField.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <array>
#include <cmath>

namespace kelvara {

namespace {

constexpr int kGain = 8; ///< What a step of one grey level adds up to in a 3 × 3 Sobel derivative, twice over.
constexpr float kWeakest = 1.0F; ///< Grey levels below which nothing is an edge.
constexpr float kSteepest = 0.45F; ///< Edges that run more across than this belong to the other direction.
constexpr int kShortestChain = 6; ///< Columns.
constexpr std::size_t kMostEdges = 5000; ///< Of one direction: bounds the work on clutter.

/// Strength of the gradient across and the edge's slope for every pixel, from the derivatives of four channels.
void measure(const cv::Mat& across, const cv::Mat& along, cv::Mat_<float>& strength, cv::Mat_<float>& slope)
{
    strength.create(across.size());
    slope.create(across.size());
    for (int y = 0; y < across.rows; ++y) {
        const short* a = across.ptr<short>(y);
        const short* l = along.ptr<short>(y);
        float* s = strength[y];
        float* m = slope[y];
        for (int x = 0; x < across.cols; ++x, a += 4, l += 4) {
            const int aa = a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
            const int al = a[0] * l[0] + a[1] * l[1] + a[2] * l[2];
            const int ll = l[0] * l[0] + l[1] * l[1] + l[2] * l[2];
            const bool runsAlong = static_cast<float>(ll) <= kSteepest * kSteepest * static_cast<float>(aa);
            s[x] = runsAlong ? std::sqrt(static_cast<float>(aa)) * (1.0F / kGain) : 0.0F;
            m[x] = -static_cast<float>(al) / static_cast<float>(aa + 1);
        }
    }
}

/// The strength that at most `kMostEdges` of the ridge points reach.
float threshold(const std::vector<EdgePoint>& points)
{
    if (points.size() <= kMostEdges)
        return 0;
    std::array<std::size_t, 1024> histogram {};
    const auto bin = [](float strength) { return std::min<std::size_t>(1023, static_cast<std::size_t>(strength * 4)); };
    for (const EdgePoint& point : points)
        ++histogram[bin(point.strength)];
    std::size_t count = 0;
    std::size_t at = histogram.size();
    while (at > 0 && count + histogram[at - 1] <= kMostEdges)
        count += histogram[--at];
    return static_cast<float>(at) / 4;
}

/// Marks in `keep` the ridge points that are part of a chain of `kShortestChain` columns or more: letters and noise
/// are not, and would crowd out a card's faint but long edges.
std::vector<char> inChains(const std::vector<EdgePoint>& ridge, const cv::Mat_<int>& index)
{
    // The ridge is in row order: chains are followed column by column.
    std::vector<int> before(ridge.size(), -1);
    std::vector<int> reach(ridge.size(), 1);
    std::vector<char> keep(ridge.size(), 0);
    for (int x = 1; x < index.cols; ++x) {
        for (int y = 0; y < index.rows; ++y) {
            const int here = index(y, x);
            if (here < 0)
                continue;
            for (const int row : { y, y - 1, y + 1 }) {
                if (row < 0 || row >= index.rows)
                    continue;
                const int left = index(row, x - 1);
                if (left >= 0 && reach[static_cast<std::size_t>(left)] >= reach[static_cast<std::size_t>(here)]) {
                    reach[static_cast<std::size_t>(here)] = reach[static_cast<std::size_t>(left)] + 1;
                    before[static_cast<std::size_t>(here)] = left;
                }
            }
        }
    }
    for (std::size_t end = 0; end < ridge.size(); ++end) {
        if (reach[end] < kShortestChain)
            continue;
        for (int at = static_cast<int>(end); at >= 0 && !keep[static_cast<std::size_t>(at)];
             at = before[static_cast<std::size_t>(at)])
            keep[static_cast<std::size_t>(at)] = 1;
    }
    return keep;
}

EdgeField thin(const cv::Mat& across, const cv::Mat& along)
{
    cv::Mat_<float> strength;
    cv::Mat_<float> slope;
    measure(across, along, strength, slope);

    EdgeField field;
    field.length = across.cols;
    field.extent = across.rows;
    std::vector<EdgePoint> ridge;
    ridge.reserve(kMostEdges * 2);
    cv::Mat_<int> ridgeIndex(across.size(), -1);
    const std::vector<float> outside(static_cast<std::size_t>(across.cols), 0.0F);
    for (int y = 0; y < across.rows; ++y) {
        const float* above = y > 0 ? strength[y - 1] : outside.data();
        const float* here = strength[y];
        const float* below = y + 1 < across.rows ? strength[y + 1] : outside.data();
        for (int x = 0; x < across.cols; ++x) {
            if (here[x] < kWeakest || here[x] < above[x] || here[x] <= below[x])
                continue;
            const float curvature = above[x] + below[x] - 2 * here[x];
            const float shift = curvature < 0 ? 0.5F * (above[x] - below[x]) / curvature : 0.0F;
            ridgeIndex(y, x) = static_cast<int>(ridge.size());
            ridge.push_back({ static_cast<float>(y) + 0.5F + shift, slope(y, x), here[x], static_cast<short>(x) });
        }
    }
    const std::vector<char> keep = inChains(ridge, ridgeIndex);
    std::vector<EdgePoint> chained;
    chained.reserve(ridge.size());
    for (std::size_t i = 0; i < ridge.size(); ++i) {
        if (keep[i])
            chained.push_back(ridge[i]);
    }
    const float least = threshold(chained);
    field.index.create(across.size());
    field.index = -1;
    field.points.reserve(std::min(chained.size(), kMostEdges));
    for (const EdgePoint& point : chained) {
        if (point.strength < least)
            continue;
        const int row = std::clamp(static_cast<int>(point.across), 0, field.extent - 1);
        field.index(row, point.along) = static_cast<int>(field.points.size());
        field.points.push_back(point);
    }
    return field;
}

} // namespace

EdgeFields findEdges(const cv::Mat& bgra)
{
    cv::Mat dx;
    cv::Mat dy;
    cv::Sobel(bgra, dx, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
    cv::Sobel(bgra, dy, CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE);
    EdgeFields fields;
    fields.horizontal = thin(dy, dx);
    fields.vertical = thin(dx.t(), dy.t());
    return fields;
}

} // namespace kelvara
