#include "Platform/Vision/LineSearch.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr float kSteepest = 0.30F; ///< Of a line: about 17°.
constexpr float kSlopeWindow = 0.12F; ///< How far an edge's own slope may be off the line's.
constexpr float kFullStrength = 10.0F; ///< Grey levels; half of it counts two thirds.
constexpr std::size_t kPeaks = 100;

/// The weight of an edge: every visible edge counts, a strong one not much more than a weak one.
float weight(float strength)
{
    return strength / (strength + kFullStrength / 4);
}

struct Peak
{
    float votes;
    SideLine line;
};

class Hough
{
public:
    explicit Hough(const EdgeField& field)
        : m_field(field), m_center(static_cast<float>(field.length) / 2),
          m_step(1.4F / static_cast<float>(std::max(field.length, 8))), m_half(static_cast<int>(kSteepest / m_step)),
          m_slopes(2 * m_half + 1), m_pad(2 + field.extent / 8), m_bins(field.extent + 2 * m_pad),
          m_votes(static_cast<std::size_t>(m_slopes * m_bins), 0.0F)
    {
        for (const EdgePoint& point : field.points)
            vote(point);
    }

    [[nodiscard]] std::vector<Peak> peaks() const
    {
        std::vector<Peak> found;
        for (int k = 0; k < m_slopes; ++k) {
            const float* here = row(k);
            const float* before = row(std::max(k - 1, 0));
            const float* after = row(std::min(k + 1, m_slopes - 1));
            for (int c = 1; c + 1 < m_bins; ++c) {
                const float votes = smooth(here, c);
                if (votes < static_cast<float>(m_field.length) * 0.12F)
                    continue;
                if (votes < smooth(before, c) || votes < smooth(after, c) || here[c] < here[c - 1]
                    || here[c] <= here[c + 1])
                    continue;
                const float mean = (here[c + 1] - here[c - 1]) / (here[c - 1] + here[c] + here[c + 1]);
                const float slope = static_cast<float>(k - m_half) * m_step;
                const float across = static_cast<float>(c - m_pad) + 0.5F + mean;
                found.push_back({ votes, { across - slope * m_center, slope } });
            }
        }
        std::sort(found.begin(), found.end(), [](const Peak& a, const Peak& b) { return a.votes > b.votes; });
        return found;
    }

private:
    [[nodiscard]] const float* row(int k) const { return m_votes.data() + static_cast<std::ptrdiff_t>(k) * m_bins; }
    static float smooth(const float* votes, int c) { return votes[c] + 0.7F * (votes[c - 1] + votes[c + 1]); }

    void vote(const EdgePoint& point)
    {
        const float along = static_cast<float>(point.along) + 0.5F - m_center;
        const int from = std::max(0, m_half + static_cast<int>(std::floor((point.slope - kSlopeWindow) / m_step)));
        const int to = std::min(m_slopes - 1, m_half + static_cast<int>((point.slope + kSlopeWindow) / m_step));
        const float votes = weight(point.strength);
        float across = point.across + static_cast<float>(m_pad) - static_cast<float>(from - m_half) * m_step * along;
        for (int k = from; k <= to; ++k, across -= m_step * along) {
            const int c = static_cast<int>(across);
            if (c >= 0 && c < m_bins)
                m_votes[static_cast<std::size_t>(k * m_bins + c)] += votes;
        }
    }

    const EdgeField& m_field;
    const float m_center;
    const float m_step;
    const int m_half;
    const int m_slopes;
    const int m_pad;
    const int m_bins;
    std::vector<float> m_votes;
};

/// The support of a line at every column: the best edge within a pixel and a half that runs the line's way.
void follow(const EdgeField& field, LineCandidate& candidate)
{
    candidate.support.assign(static_cast<std::size_t>(field.length) + 1, 0.0F);
    float run = 0;
    float best = 0;
    float sum = 0;
    for (int x = 0; x < field.length; ++x) {
        const float across = candidate.line.at(static_cast<float>(x) + 0.5F);
        const int row = static_cast<int>(std::floor(across));
        float support = 0;
        for (int y = std::max(row - 1, 0); y <= std::min(row + 1, field.extent - 1); ++y) {
            const int index = field.index(y, x);
            if (index < 0)
                continue;
            const EdgePoint& point = field.points[static_cast<std::size_t>(index)];
            if (std::abs(point.across - across) > 1.3F || std::abs(point.slope - candidate.line.slope) > 0.3F)
                continue;
            support = std::max(support, weight(point.strength));
        }
        sum += support;
        candidate.support[static_cast<std::size_t>(x) + 1] = sum;
        run = std::max(0.0F, run + support - 0.3F);
        best = std::max(best, run);
    }
    candidate.score = best;
}

bool alike(const SideLine& a, const SideLine& b, float length)
{
    return std::abs(a.at(length * 0.2F) - b.at(length * 0.2F)) < 2.0F
        && std::abs(a.at(length * 0.8F) - b.at(length * 0.8F)) < 2.0F;
}

} // namespace

float LineCandidate::meanSupport(float from, float to) const
{
    const int last = static_cast<int>(support.size()) - 1;
    const int begin = std::clamp(static_cast<int>(std::lround(from)), 0, last);
    const int end = std::clamp(static_cast<int>(std::lround(to)), 0, last);
    if (end <= begin)
        return 0;
    return (support[static_cast<std::size_t>(end)] - support[static_cast<std::size_t>(begin)])
        / static_cast<float>(end - begin);
}

std::vector<LineCandidate> findLines(const EdgeField& field, std::size_t atMost)
{
    std::vector<LineCandidate> lines;
    const auto length = static_cast<float>(field.length);
    for (const Peak& peak : Hough(field).peaks()) {
        const auto same = [&](const LineCandidate& known) { return alike(known.line, peak.line, length); };
        if (std::any_of(lines.begin(), lines.end(), same))
            continue;
        lines.push_back({ peak.line, 0, {} });
        follow(field, lines.back());
        if (lines.size() == kPeaks)
            break;
    }
    std::sort(
        lines.begin(), lines.end(), [](const LineCandidate& a, const LineCandidate& b) { return a.score > b.score; });
    if (lines.size() > atMost)
        lines.resize(atMost);
    return lines;
}

} // namespace kelvara
