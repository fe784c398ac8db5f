#include "Platform/Vision/QuadSearch.h"

#include "Platform/Vision/VNDetectRectanglesRequest.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace kelvara {

namespace {

constexpr float kMostConverging = 0.20F; ///< Difference of the slopes of opposite sides.
constexpr float kMostSkewed = 0.16F; ///< Sum of the slopes of neighbouring sides: 0 when they are square.
constexpr float kRoom = 0.05F; ///< By which coarse sides may miss the limits.
constexpr float kSkippedEnd = 0.08F; ///< Of a side: its rounded corners.
constexpr float kLeastSupport = 0.12F; ///< Of the weakest side.
constexpr float kLeastScore = 0.55F;

struct Pair
{
    const LineCandidate* first;
    const LineCandidate* second;
    float gap;
    float slope;
};

std::vector<Pair> pairsOf(const std::vector<LineCandidate>& lines, float center, float least)
{
    std::vector<Pair> pairs;
    for (const LineCandidate& first : lines) {
        for (const LineCandidate& second : lines) {
            const float gap = second.line.at(center) - first.line.at(center);
            if (gap < least || std::abs(first.line.slope - second.line.slope) > kMostConverging)
                continue;
            pairs.push_back({ &first, &second, gap, (first.line.slope + second.line.slope) / 2 });
        }
    }
    std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.gap < b.gap; });
    return pairs;
}

float sideSupport(const LineCandidate& side, float from, float to)
{
    const float skipped = (to - from) * kSkippedEnd;
    return side.meanSupport(from + skipped, to - skipped);
}

class Search
{
public:
    Search(cv::Size2f imageSize, const RectangleLimits& limits)
        : m_imageSize(imageSize),
          m_least(limits.minimumSize * std::min(imageSize.width, imageSize.height) * (1 - kRoom)),
          m_leastAspect(limits.minimumAspectRatio * (1 - kRoom)), m_mostAspect(limits.maximumAspectRatio * (1 + kRoom))
    { }

    std::vector<QuadCandidate> run(
        const std::vector<LineCandidate>& horizontal, const std::vector<LineCandidate>& vertical)
    {
        const std::vector<Pair> rows = pairsOf(horizontal, m_imageSize.width / 2, m_least);
        const std::vector<Pair> columns = pairsOf(vertical, m_imageSize.height / 2, m_least);
        for (const Pair& row : rows) {
            // Twice the room: the gaps are those at the image's centre, not the means of the sides.
            tryColumns(row, columns, row.gap * m_leastAspect * (1 - kRoom), row.gap * m_mostAspect * (1 + kRoom));
            tryColumns(row, columns, row.gap / m_mostAspect * (1 - kRoom), row.gap / m_leastAspect * (1 + kRoom));
        }
        return std::move(m_found);
    }

private:
    void tryColumns(const Pair& row, std::span<const Pair> columns, float least, float most)
    {
        const auto shorter = [](const Pair& pair, float gap) { return pair.gap < gap; };
        auto column = std::lower_bound(columns.begin(), columns.end(), least, shorter);
        for (; column != columns.end() && column->gap <= most; ++column) {
            if (std::abs(row.slope + column->slope) <= kMostSkewed)
                tryQuad(row, *column);
        }
    }

    void tryQuad(const Pair& row, const Pair& column)
    {
        const Quad quad { meeting(row.first->line, column.first->line), meeting(row.first->line, column.second->line),
            meeting(row.second->line, column.second->line), meeting(row.second->line, column.first->line) };
        const float sides[]
            = { sideSupport(*row.first, quad[0].x, quad[1].x), sideSupport(*column.second, quad[1].y, quad[2].y),
                  sideSupport(*row.second, quad[3].x, quad[2].x), sideSupport(*column.first, quad[0].y, quad[3].y) };
        const float least = *std::min_element(std::begin(sides), std::end(sides));
        if (least < kLeastSupport)
            return;
        const QuadSize size(quad);
        if (size.aspect() < m_leastAspect || size.aspect() > m_mostAspect || size.shortSide() < m_least)
            return;
        const float mean = (sides[0] + sides[1] + sides[2] + sides[3]) / 4;
        const float area = size.width * size.height / (m_imageSize.width * m_imageSize.height);
        const float score = mean + 0.6F * least + 0.25F * area;
        if (score >= kLeastScore)
            m_found.push_back({ quad, { row.first, column.second, row.second, column.first }, score });
    }

    const cv::Size2f m_imageSize;
    const float m_least;
    const float m_leastAspect;
    const float m_mostAspect;
    std::vector<QuadCandidate> m_found;
};

bool alike(const Quad& a, const Quad& b)
{
    for (std::size_t corner = 0; corner < a.size(); ++corner) {
        if (std::abs(a[corner].x - b[corner].x) + std::abs(a[corner].y - b[corner].y) > 4)
            return false;
    }
    return true;
}

} // namespace

std::vector<QuadCandidate> findQuads(const std::vector<LineCandidate>& horizontal,
    const std::vector<LineCandidate>& vertical, cv::Size2f imageSize, const RectangleLimits& limits, std::size_t atMost)
{
    std::vector<QuadCandidate> all = Search(imageSize, limits).run(horizontal, vertical);
    const std::size_t looked = std::min<std::size_t>(all.size(), atMost * 16);
    const auto better = [](const QuadCandidate& a, const QuadCandidate& b) { return a.score > b.score; };
    std::partial_sort(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(looked), all.end(), better);
    std::vector<QuadCandidate> kept;
    for (std::size_t i = 0; i < looked && kept.size() < atMost; ++i) {
        const auto same = [&](const QuadCandidate& known) { return alike(known.corners, all[i].corners); };
        if (std::none_of(kept.begin(), kept.end(), same))
            kept.push_back(all[i]);
    }
    return kept;
}

} // namespace kelvara
