#include "Platform/Vision/CardSearch.h"

#include "Platform/Vision/QuadSearch.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr std::size_t kLines = 28; ///< Of one direction.
constexpr std::size_t kRefined = 12; ///< Quadrilaterals that are fitted.
constexpr int kReach = 6; ///< Pixels of the fine plane by which coarse sides may be off.
constexpr int kFineReach = 3; ///< Pixels of the finest plane by which the fitted sides may be off.
constexpr int kCoarseSide = 320; ///< The coarse plane's long side is at most this, where there are levels enough.

int coarseLevel(const cv::Size& size)
{
    int level = 0;
    while (level + 1 < VisionImage::Planes::levels && (std::max(size.width, size.height) >> level) > kCoarseSide)
        ++level;
    return level;
}

Quad scaled(const Quad& quad, float factor)
{
    Quad result = quad;
    for (cv::Point2f& corner : result)
        corner *= factor;
    return result;
}

/// How much the tip of a corner, which a rounded corner leaves to the surroundings, looks like them: 1 just like
/// them, −1 just like the card.
float cornerEvidence(
    const cv::Mat& bgra, const Quad& quad, std::size_t corner, const SideEvidence& before, const SideEvidence& after)
{
    const cv::Point2f middle = (quad[0] + quad[1] + quad[2] + quad[3]) / 4;
    const QuadSize size(quad);
    const float radius = std::max(size.width, size.height) * 0.037F;
    cv::Point2f inward = middle - quad[corner];
    inward /= std::max(distance(middle, quad[corner]), 1.0F);
    const cv::Point2f at = quad[corner] + inward * (radius * 0.22F);
    const cv::Rect all(0, 0, bgra.cols, bgra.rows);
    cv::Vec3f color(0, 0, 0);
    int count = 0;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const cv::Point pixel(static_cast<int>(std::floor(at.x)) + dx, static_cast<int>(std::floor(at.y)) + dy);
            if (!all.contains(pixel))
                continue;
            const cv::Vec4b& value = bgra.at<cv::Vec4b>(pixel);
            color += cv::Vec3f(value[0], value[1], value[2]);
            ++count;
        }
    }
    if (count == 0)
        return 0;
    color *= 1.0F / static_cast<float>(count);
    const cv::Vec3f inside = (before.inside + after.inside) * 0.5F;
    const cv::Vec3f outside = (before.outside + after.outside) * 0.5F;
    const auto toInside = static_cast<float>(cv::norm(color - inside));
    const auto toOutside = static_cast<float>(cv::norm(color - outside));
    return (toInside - toOutside) / (toInside + toOutside + 2);
}

/// The stretch of a coarse line beyond a side's two ends, a sixth of the side each.
float overrun(const LineCandidate& line, float from, float to)
{
    const float side = to - from;
    const float before = line.meanSupport(from - side * 0.18F, from - side * 0.03F);
    const float after = line.meanSupport(to + side * 0.03F, to + side * 0.18F);
    return std::max(before, after);
}

RectangleLimits widened(RectangleLimits limits)
{
    limits.minimumAspectRatio *= 0.8F;
    limits.maximumAspectRatio *= 1.4F;
    limits.minimumSize *= 0.7F;
    return limits;
}

} // namespace

bool within(const Quad& quad, const RectangleLimits& limits, cv::Size size)
{
    const QuadSize sides(quad);
    return sides.aspect() >= limits.minimumAspectRatio && sides.aspect() <= limits.maximumAspectRatio
        && sides.shortSide() >= limits.minimumSize * static_cast<float>(std::min(size.width, size.height));
}

Quad refined(VisionImage::Planes& planes, const Quad& corners)
{
    const int level = std::max(coarseLevel(planes.bgra(0).size()) - 2, 0);
    const auto toFull = static_cast<float>(1 << level);
    const Quad start = scaled(corners, 1 / toFull);
    std::array<FittedSide, 4> sides;
    for (std::size_t i = 0; i < 4; ++i)
        sides[i] = fitSide(planes.bgra(level), start[i], start[(i + 1) % 4], kFineReach);
    return scaled(cornersOf(sides), toFull);
}

std::vector<CardCandidate> searchCards(VisionImage::Planes& planes, const RectangleLimits& limits)
{
    const cv::Size full = planes.bgra(0).size();
    const int coarse = coarseLevel(full);
    const cv::Mat& plane = planes.bgra(coarse);
    if (plane.cols < 24 || plane.rows < 24)
        return {};
    const EdgeFields edges = findEdges(plane);
    const std::vector<LineCandidate> rows = findLines(edges.horizontal, kLines);
    const std::vector<LineCandidate> columns = findLines(edges.vertical, kLines);
    const std::vector<QuadCandidate> quads = findQuads(rows, columns, plane.size(), widened(limits), kRefined);

    const int fine = std::max(coarse - 1, 0);
    const cv::Mat& detail = planes.bgra(fine);
    const auto toFine = static_cast<float>(1 << (coarse - fine));
    const auto toFull = static_cast<float>(1 << fine);
    std::vector<CardCandidate> candidates;
    for (const QuadCandidate& quad : quads) {
        const Quad start = scaled(quad.corners, toFine);
        std::array<FittedSide, 4> sides;
        for (std::size_t i = 0; i < 4; ++i)
            sides[i] = fitSide(detail, start[i], start[(i + 1) % 4], kReach);
        const Quad fitted = cornersOf(sides);
        CardCandidate candidate;
        candidate.corners = scaled(fitted, toFull);
        for (std::size_t i = 0; i < 4; ++i) {
            candidate.sides[i] = sides[i].evidence;
            candidate.cornerEvidence[i]
                = cornerEvidence(detail, fitted, i, sides[(i + 3) % 4].evidence, sides[i].evidence);
        }
        candidate.overrun = { overrun(*quad.sides[0], quad.corners[0].x, quad.corners[1].x),
            overrun(*quad.sides[1], quad.corners[1].y, quad.corners[2].y),
            overrun(*quad.sides[2], quad.corners[3].x, quad.corners[2].x),
            overrun(*quad.sides[3], quad.corners[0].y, quad.corners[3].y) };
        const QuadSize size(candidate.corners);
        candidate.area = size.width * size.height / static_cast<float>(full.area());
        candidates.push_back(candidate);
    }
    return candidates;
}

} // namespace kelvara
