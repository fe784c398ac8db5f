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
    const Four sharpness = each(candidate, [](const SideEvidence& side) { return side.sharpness; });
    const Four contrast = each(candidate, [](const SideEvidence& side) { return std::log1p(side.contrast); });
    const Four consistency = each(candidate, [](const SideEvidence& side) { return side.consistency; });
    const Four rim = each(candidate, [](const SideEvidence& side) { return std::log1p(side.rim); });
    const Four surround = each(candidate, [](const SideEvidence& side) { return std::log1p(side.surround); });
    const Four overrun(candidate.overrun);
    const Four tips(candidate.cornerEvidence);
    std::array<float, 4> belongings {};
    std::array<float, 4> joints {};
    for (std::size_t i = 0; i < 4; ++i) {
        belongings[i] = belonging(candidate, i);
        joints[i] = std::min(candidate.sides[(i + 3) % 4].toSupport, candidate.sides[i].fromSupport);
    }
    return { support.least(), support.second(), support.mean(), dominance.least(), sharpness.mean(), contrast.least(),
        consistency.least(), rim.least(), rim.mean(), rim.most(), surround.mean(), overrun.mean(), tips.least(),
        tips.second(), Four(belongings).least(), Four(joints).second(), candidate.area };
}

float score(const CardCandidate& candidate)
{
    // Learnt from photographed scenes by Tools/Evaluate/FitRectangleScore.cpp (900 pictures a class).
    static constexpr CardFeatures weights { -18.456F, -13.252F, 61.969F, -0.63969F, 22.542F, 1.3798F, -1.6316F,
        -0.20897F, 0.50109F, -2.7807F, 1.2788F, -10.549F, 0.65927F, 2.1165F, 1.3574F, 3.5031F, 4.0176F };
    const CardFeatures features = featuresOf(candidate);
    float sum = -44.654F;
    for (std::size_t i = 0; i < features.size(); ++i)
        sum += weights[i] * features[i];
    return sum;
}

} // namespace kelvara
