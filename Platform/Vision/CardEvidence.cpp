#include "Platform/Vision/CardEvidence.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

struct Four
{
    std::array<float, 4> sorted;

    explicit Four(std::array<float, 4> values) : sorted(values) { std::sort(sorted.begin(), sorted.end()); }
    [[nodiscard]] float least() const { return sorted[0]; }
    [[nodiscard]] float second() const { return sorted[1]; }
    [[nodiscard]] float most() const { return sorted[3]; }
    [[nodiscard]] float mean() const { return (sorted[0] + sorted[1] + sorted[2] + sorted[3]) / 4; }
};

template<typename Value> Four each(const CardCandidate& candidate, Value value)
{
    return Four(
        { value(candidate.sides[0]), value(candidate.sides[1]), value(candidate.sides[2]), value(candidate.sides[3]) });
}

float largestDifference(const CardCandidate& candidate, cv::Vec3f SideEvidence::*color)
{
    float most = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = i + 1; j < 4; ++j)
            most = std::max(most, static_cast<float>(cv::norm(candidate.sides[i].*color - candidate.sides[j].*color)));
    }
    return most;
}

/// How the colours just inside of one side are the card's own, −1…1: seen along the other sides inside, not outside.
float belonging(const CardCandidate& candidate, std::size_t side)
{
    float toInside = 1e6F;
    float toOutside = 1e6F;
    for (std::size_t other = 0; other < 4; ++other) {
        if (other == side)
            continue;
        const cv::Vec3f& color = candidate.sides[side].inside;
        toInside = std::min(toInside, static_cast<float>(cv::norm(color - candidate.sides[other].inside)));
        toOutside = std::min(toOutside, static_cast<float>(cv::norm(color - candidate.sides[other].outside)));
    }
    return (toOutside - toInside) / (toInside + toOutside + 4);
}

} // namespace

CardFeatures featuresOf(const CardCandidate& candidate)
{
    const Four support = each(candidate, [](const SideEvidence& side) { return side.support; });
    const Four dominance = each(candidate, [](const SideEvidence& side) { return side.dominance; });
    const Four contrast = each(candidate, [](const SideEvidence& side) { return std::log1p(side.contrast); });
    const Four consistency = each(candidate, [](const SideEvidence& side) { return side.consistency; });
    const Four rim = each(candidate, [](const SideEvidence& side) { return std::log1p(side.rim); });
    const Four surround = each(candidate, [](const SideEvidence& side) { return std::log1p(side.surround); });
    const Four sharpness = each(candidate, [](const SideEvidence& side) { return side.sharpness; });
    const Four overrun(candidate.overrun);
    const Four corners(candidate.cornerEvidence);
    const Four belongings(
        { belonging(candidate, 0), belonging(candidate, 1), belonging(candidate, 2), belonging(candidate, 3) });
    std::array<float, 4> ends {};
    for (std::size_t i = 0; i < 4; ++i)
        ends[i] = std::min(candidate.sides[(i + 3) % 4].toSupport, candidate.sides[i].fromSupport);
    const Four joints(ends);
    return { support.least(), support.second(), support.mean(), dominance.least(), dominance.mean(), contrast.least(),
        contrast.mean(), consistency.least(), consistency.mean(), rim.least(), rim.mean(), rim.most(), surround.mean(),
        surround.most(), std::log1p(largestDifference(candidate, &SideEvidence::inside)),
        std::log1p(largestDifference(candidate, &SideEvidence::outside)), overrun.mean(), overrun.most(),
        corners.least(), corners.second(), corners.mean(), candidate.coarseScore, candidate.area, belongings.least(),
        belongings.mean(), joints.least(), joints.second(), sharpness.least(), sharpness.mean() };
}

float score(const CardCandidate& candidate)
{
    static constexpr CardFeatures weights { -8.449F, -7.0452F, 27.562F, -2.3421F, 4.7559F, 1.9582F, -0.58756F, -2.7722F,
        0.12166F, 1.652F, -4.3241F, -1.6809F, 1.6278F, -0.10886F, -0.093945F, 0.14741F, -9.2597F, -0.35264F, 0.7878F,
        2.0494F, 0.035564F, -1.0095F, 4.2387F, 1.1373F, 1.2094F, 0.33498F, 2.5895F, -4.5613F, 30.123F };
    const CardFeatures features = featuresOf(candidate);
    float sum = -25.77833F;
    for (std::size_t i = 0; i < features.size(); ++i)
        sum += weights[i] * features[i];
    return sum;
}

} // namespace kelvara
