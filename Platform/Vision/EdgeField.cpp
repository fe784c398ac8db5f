#include "Platform/Vision/EdgeField.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int kGain = 8; ///< What a step of one grey level adds up to in a 3 × 3 Sobel derivative, twice over.
constexpr float kWeakest = 1.0F; ///< Grey levels below which nothing is an edge.
constexpr float kSteepest = 0.45F; ///< Edges that run more across than this belong to the other direction.
constexpr int kLongChain = 24; ///< Columns above which chains are all alike.
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

/// A field's ridge points before the choice among them.
struct Ridge
{
    std::vector<EdgePoint> points;
    cv::Mat_<int> index; ///< Of every pixel, or −1.
};

Ridge ridgeOf(const cv::Mat_<float>& strength, const cv::Mat_<float>& slope)
{
    Ridge ridge { {}, cv::Mat_<int>(strength.size(), -1) };
    ridge.points.reserve(strength.total() / 6);
    const std::vector<float> outside(static_cast<std::size_t>(strength.cols), 0.0F);
    for (int y = 0; y < strength.rows; ++y) {
        const float* above = y > 0 ? strength[y - 1] : outside.data();
        const float* here = strength[y];
        const float* below = y + 1 < strength.rows ? strength[y + 1] : outside.data();
        for (int x = 0; x < strength.cols; ++x) {
            if (here[x] < kWeakest || here[x] < above[x] || here[x] <= below[x])
                continue;
            const float curvature = above[x] + below[x] - 2 * here[x];
            const float shift = curvature < 0 ? 0.5F * (above[x] - below[x]) / curvature : 0.0F;
            ridge.index(y, x) = static_cast<int>(ridge.points.size());
            ridge.points.push_back(
                { static_cast<float>(y) + 0.5F + shift, slope(y, x), here[x], static_cast<short>(x) });
        }
    }
    return ridge;
}

/// The length in columns of the longest chain that every ridge point is part of.
std::vector<int> chainLengths(const Ridge& ridge)
{
    std::vector<int> lengths(ridge.points.size(), 1);
    std::vector<int> before(ridge.points.size(), -1);
    std::vector<int> order;
    order.reserve(ridge.points.size());
    for (int x = 0; x < ridge.index.cols; ++x) {
        for (int y = 0; y < ridge.index.rows; ++y) {
            const int here = ridge.index(y, x);
            if (here < 0)
                continue;
            order.push_back(here);
            const auto at = static_cast<std::size_t>(here);
            for (int row = std::max(y - 1, 0); x > 0 && row <= std::min(y + 1, ridge.index.rows - 1); ++row) {
                const int left = ridge.index(row, x - 1);
                if (left >= 0 && lengths[static_cast<std::size_t>(left)] >= lengths[at]) {
                    lengths[at] = lengths[static_cast<std::size_t>(left)] + 1;
                    before[at] = left;
                }
            }
        }
    }
    for (auto here = order.rbegin(); here != order.rend(); ++here) {
        const int left = before[static_cast<std::size_t>(*here)];
        if (left >= 0) {
            int& length = lengths[static_cast<std::size_t>(left)];
            length = std::max(length, lengths[static_cast<std::size_t>(*here)]);
        }
    }
    return lengths;
}

/// At most `kMostEdges` of the points: those of longer chains first, then the stronger ones. Letters and noise make
/// short chains, however strong, and would crowd out a card's faint but long edges.
EdgeField chosen(const Ridge& ridge)
{
    constexpr int strengths = 64;
    const std::vector<int> lengths = chainLengths(ridge);
    const auto rank = [&](std::size_t i) {
        const int strength = std::min(static_cast<int>(ridge.points[i].strength), strengths - 1);
        return static_cast<std::size_t>(std::min(lengths[i], kLongChain) * strengths + strength);
    };
    std::vector<std::size_t> histogram(static_cast<std::size_t>((kLongChain + 1) * strengths), 0);
    for (std::size_t i = 0; i < ridge.points.size(); ++i)
        ++histogram[rank(i)];
    std::size_t least = histogram.size();
    for (std::size_t count = 0; least > 0 && count + histogram[least - 1] <= kMostEdges;)
        count += histogram[--least];

    EdgeField field { ridge.index.cols, ridge.index.rows, {}, cv::Mat_<int>(ridge.index.size(), -1) };
    field.points.reserve(std::min(ridge.points.size(), kMostEdges));
    for (std::size_t i = 0; i < ridge.points.size(); ++i) {
        if (rank(i) < least)
            continue;
        const EdgePoint& point = ridge.points[i];
        const int row = std::clamp(static_cast<int>(point.across), 0, field.extent - 1);
        field.index(row, point.along) = static_cast<int>(field.points.size());
        field.points.push_back(point);
    }
    return field;
}

EdgeField thin(const cv::Mat& across, const cv::Mat& along)
{
    cv::Mat_<float> strength;
    cv::Mat_<float> slope;
    measure(across, along, strength, slope);
    return chosen(ridgeOf(strength, slope));
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
