#include "Platform/Vision/SideFit.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <opencv2/core/hal/intrin.hpp>
#include <vector>

namespace kelvara {

namespace {

constexpr int kStations = 36;
constexpr int kEndStations = 6; ///< At each end of the side.
constexpr float kUnmeasuredEnd = 0.09F;
constexpr int kMostReach = 10;
constexpr int kRim = 4; ///< Pixels on both sides of the edge whose colours are compared.
constexpr float kFaintestEdge = 2.0F; ///< Edge strength in grey levels.
constexpr float kFullStrength = 8.0F; ///< At which an edge counts half.
constexpr int kEdgesAtStation = 4;

/// Mean of all but the largest few: those at which a finger begins and ends.
float trimmedMean(std::vector<float>& values)
{
    const std::size_t kept = values.size() - values.size() / 8;
    if (kept == 0)
        return 0;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(kept) - 1, values.end());
    return std::accumulate(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(kept), 0.0F)
        / static_cast<float>(kept);
}

struct Sample
{
    cv::Vec3f color { 0, 0, 0 };
    bool valid = false;
};

struct Edge
{
    float at = 0;
    float strength = 0;
    cv::Vec3f step { 0, 0, 0 };
};

struct Station
{
    std::array<Sample, 2 * (kMostReach + kRim) + 1> profile; ///< From outside (−) to inside (+).
    std::array<Edge, kEdgesAtStation> edges;
    int edgeCount = 0;
    float strongest = 0;
};

class Fit
{
public:
    Fit(const cv::Mat& bgra, cv::Point2f from, cv::Point2f to, int reach)
        : m_bgra(bgra), m_from(from), m_to(to), m_reach(std::clamp(reach, 1, kMostReach)),
          m_right(static_cast<float>(bgra.cols) - 0.5F), m_bottom(static_cast<float>(bgra.rows) - 0.5F)
    {
        const float length = std::max(distance(from, to), 1.0F);
        m_along = (to - from) / length;
        m_inward = { -m_along.y, m_along.x };
        m_spacing = length * (1 - 2 * kUnmeasuredEnd) / (kStations - 1);
        for (int i = 0; i < kStations; ++i)
            measure(
                m_stations[static_cast<std::size_t>(i)], length * kUnmeasuredEnd + m_spacing * static_cast<float>(i));
    }

    FittedSide run()
    {
        vote();
        for (int round = 0; round < 3; ++round)
            refine(round == 0 ? 1.6F : 1.1F);
        // The stations' ends, carried on to the side's ends.
        const float end = 1 / (1 - 2 * kUnmeasuredEnd);
        FittedSide side { m_from + m_inward * (m_offset - m_tilt * end), m_to + m_inward * (m_offset + m_tilt * end),
            judge() };
        return side;
    }

private:
    /// −1 at the first station, 1 at the last.
    static float place(int station) { return 2.0F * static_cast<float>(station) / (kStations - 1) - 1; }

    /// Adds the colour between the four pixels around a place; false when it lies outside the plane.
    bool addColor(cv::v_float32x4& sum, cv::Point2f at) const
    {
        const float x = at.x - 0.5F;
        const float y = at.y - 0.5F;
        if (!(x > -0.5F && y > -0.5F && x < m_right && y < m_bottom))
            return false;
        const int x0 = std::min(static_cast<int>(std::max(x, 0.0F)), m_bgra.cols - 2);
        const int y0 = std::min(static_cast<int>(std::max(y, 0.0F)), m_bgra.rows - 2);
        const cv::v_float32x4 fx = cv::v_setall_f32(std::clamp(x - static_cast<float>(x0), 0.0F, 1.0F));
        const cv::v_float32x4 fy = cv::v_setall_f32(std::clamp(y - static_cast<float>(y0), 0.0F, 1.0F));
        const auto pixel
            = [](const uchar* bgra) { return cv::v_cvt_f32(cv::v_reinterpret_as_s32(cv::v_load_expand_q(bgra))); };
        const uchar* upper = m_bgra.ptr<uchar>(y0) + 4 * x0;
        const uchar* lower = m_bgra.ptr<uchar>(y0 + 1) + 4 * x0;
        const cv::v_float32x4 above = pixel(upper) + (pixel(upper + 4) - pixel(upper)) * fx;
        const cv::v_float32x4 below = pixel(lower) + (pixel(lower + 4) - pixel(lower)) * fx;
        sum += above + (below - above) * fy;
        return true;
    }

    void measure(Station& station, float along) const
    {
        const int reach = m_reach + kRim;
        const cv::Point2f aside = m_along * (m_spacing / 3);
        for (int t = -reach; t <= reach; ++t) {
            const cv::Point2f at = m_from + m_along * along + m_inward * static_cast<float>(t);
            cv::v_float32x4 sum = cv::v_setzero_f32();
            Sample& mean = station.profile[static_cast<std::size_t>(t + reach)];
            mean.valid = addColor(sum, at - aside) && addColor(sum, at) && addColor(sum, at + aside);
            float color[4];
            cv::v_store(color, sum);
            mean.color = cv::Vec3f(color[0], color[1], color[2]) * (1.0F / 3);
        }
        findEdges(station);
    }

    void findEdges(Station& station) const
    {
        const int reach = m_reach + kRim;
        std::array<float, 2 * kMostReach + 3> strength {};
        const auto step = [&](int t) {
            const Sample& before = station.profile[static_cast<std::size_t>(t - 1 + reach)];
            const Sample& after = station.profile[static_cast<std::size_t>(t + 1 + reach)];
            return before.valid && after.valid ? after.color - before.color : cv::Vec3f(0, 0, 0);
        };
        for (int t = -m_reach - 1; t <= m_reach + 1; ++t)
            strength[static_cast<std::size_t>(t + m_reach + 1)] = static_cast<float>(cv::norm(step(t)));
        for (int t = -m_reach; t <= m_reach; ++t) {
            const float before = strength[static_cast<std::size_t>(t + m_reach)];
            const float here = strength[static_cast<std::size_t>(t + m_reach + 1)];
            const float after = strength[static_cast<std::size_t>(t + m_reach + 2)];
            if (here < kFaintestEdge || here < before || here <= after)
                continue;
            const float curvature = before + after - 2 * here;
            const float shift = curvature < 0 ? 0.5F * (before - after) / curvature : 0.0F;
            keep(station, { static_cast<float>(t) + shift, here, step(t) });
        }
    }

    /// Keeps the strongest edges of a station.
    static void keep(Station& station, const Edge& edge)
    {
        station.strongest = std::max(station.strongest, edge.strength);
        if (station.edgeCount < kEdgesAtStation) {
            station.edges[static_cast<std::size_t>(station.edgeCount++)] = edge;
            return;
        }
        Edge& weakest = *std::min_element(station.edges.begin(), station.edges.end(),
            [](const Edge& a, const Edge& b) { return a.strength < b.strength; });
        if (edge.strength > weakest.strength)
            weakest = edge;
    }

    static float weight(float strength) { return strength / (strength + kFullStrength); }

    [[nodiscard]] const Edge* nearest(int index, float tolerance) const
    {
        const Station& station = m_stations[static_cast<std::size_t>(index)];
        const float line = m_offset + m_tilt * place(index);
        const Edge* best = nullptr;
        for (int e = 0; e < station.edgeCount; ++e) {
            const Edge& edge = station.edges[static_cast<std::size_t>(e)];
            if (std::abs(edge.at - line) <= tolerance) {
                tolerance = std::abs(edge.at - line);
                best = &edge;
            }
        }
        return best;
    }

    /// The offset and tilt that most stations agree on.
    void vote()
    {
        const int tilts = m_reach / 2;
        const int bins = 2 * m_reach + 2 * tilts + 3;
        std::vector<float> votes(static_cast<std::size_t>((2 * tilts + 1) * bins), 0.0F);
        for (int i = 0; i < kStations; ++i) {
            const Station& station = m_stations[static_cast<std::size_t>(i)];
            for (int e = 0; e < station.edgeCount; ++e) {
                const Edge& edge = station.edges[static_cast<std::size_t>(e)];
                for (int tilt = -tilts; tilt <= tilts; ++tilt) {
                    const float offset
                        = edge.at - static_cast<float>(tilt) * place(i) + static_cast<float>(m_reach + tilts + 1);
                    const auto bin = static_cast<std::size_t>((tilt + tilts) * bins + std::lround(offset));
                    votes[bin] += weight(edge.strength);
                }
            }
        }
        float best = -1;
        for (int tilt = -tilts; tilt <= tilts; ++tilt) {
            const float* row = votes.data() + static_cast<std::ptrdiff_t>(tilt + tilts) * bins;
            for (int c = 1; c + 1 < bins; ++c) {
                const float sum = row[c] + 0.6F * (row[c - 1] + row[c + 1]);
                if (sum > best) {
                    best = sum;
                    m_offset = static_cast<float>(c - m_reach - tilts - 1);
                    m_tilt = static_cast<float>(tilt);
                }
            }
        }
    }

    /// Least squares through the edges on the line, the nearer ones weighing more.
    void refine(float tolerance)
    {
        double w = 0;
        double ws = 0;
        double wss = 0;
        double wt = 0;
        double wst = 0;
        for (int i = 0; i < kStations; ++i) {
            const Edge* edge = nearest(i, tolerance);
            if (!edge)
                continue;
            const double s = place(i);
            const double off = (edge->at - (m_offset + m_tilt * place(i))) / tolerance;
            const double weighted = weight(edge->strength) * (1 - off * off) * (1 - off * off);
            w += weighted;
            ws += weighted * s;
            wss += weighted * s * s;
            wt += weighted * edge->at;
            wst += weighted * s * edge->at;
        }
        const double determinant = w * wss - ws * ws;
        if (determinant < 1e-3)
            return;
        m_offset = static_cast<float>((wt * wss - wst * ws) / determinant);
        m_tilt = static_cast<float>((w * wst - ws * wt) / determinant);
    }

    /// Mean colour of a station from `first` to `last` pixels inward of the line.
    [[nodiscard]] Sample mean(int index, float first, float last) const
    {
        const Station& station = m_stations[static_cast<std::size_t>(index)];
        const float line = m_offset + m_tilt * place(index) + static_cast<float>(m_reach + kRim);
        const int size = 2 * (m_reach + kRim) + 1;
        Sample result;
        float count = 0;
        for (auto t = static_cast<int>(std::lround(line + first)); t <= static_cast<int>(std::lround(line + last));
             ++t) {
            if (t < 0 || t >= size || !station.profile[static_cast<std::size_t>(t)].valid)
                continue;
            result.color += station.profile[static_cast<std::size_t>(t)].color;
            ++count;
        }
        result.valid = count > 0;
        if (result.valid)
            result.color *= 1 / count;
        return result;
    }

    [[nodiscard]] SideEvidence judge() const
    {
        SideEvidence evidence;
        cv::Vec3f steps(0, 0, 0);
        float stepLengths = 0;
        float count = 0;
        float sharp = 0;
        int edges = 0;
        std::vector<float> rims;
        std::vector<float> surrounds;
        Sample lastInside;
        Sample lastOutside;
        for (int i = 0; i < kStations; ++i) {
            const Edge* edge = nearest(i, 1.1F);
            if (edge) {
                evidence.support += 1.0F / kStations;
                if (i < kEndStations)
                    evidence.fromSupport += 1.0F / kEndStations;
                if (i >= kStations - kEndStations)
                    evidence.toSupport += 1.0F / kEndStations;
                if (edge->strength >= 0.8F * m_stations[static_cast<std::size_t>(i)].strongest)
                    evidence.dominance += 1.0F / kStations;
            }
            const Sample inside = mean(i, 1.5F, kRim);
            const Sample outside = mean(i, -kRim, -1.5F);
            if (!inside.valid || !outside.valid)
                continue;
            steps += inside.color - outside.color;
            const auto step = static_cast<float>(cv::norm(inside.color - outside.color));
            stepLengths += step;
            if (edge) {
                sharp += edge->strength / (edge->strength + step + 1);
                ++edges;
            }
            evidence.inside += inside.color;
            evidence.outside += outside.color;
            ++count;
            if (lastInside.valid) {
                rims.push_back(static_cast<float>(cv::norm(inside.color - lastInside.color)));
                surrounds.push_back(static_cast<float>(cv::norm(outside.color - lastOutside.color)));
            }
            lastInside = inside;
            lastOutside = outside;
        }
        if (count > 0) {
            evidence.contrast = static_cast<float>(cv::norm(steps)) / count;
            evidence.consistency = static_cast<float>(cv::norm(steps)) / std::max(stepLengths, 1.0F);
            evidence.inside *= 1 / count;
            evidence.outside *= 1 / count;
        }
        evidence.sharpness = sharp / static_cast<float>(std::max(edges, 1));
        evidence.rim = trimmedMean(rims);
        evidence.surround = trimmedMean(surrounds);
        return evidence;
    }

    const cv::Mat& m_bgra;
    const cv::Point2f m_from;
    const cv::Point2f m_to;
    const int m_reach;
    const float m_right;
    const float m_bottom;
    cv::Point2f m_along;
    cv::Point2f m_inward;
    float m_spacing = 1;
    std::array<Station, kStations> m_stations;
    float m_offset = 0;
    float m_tilt = 0;
};

} // namespace

FittedSide fitSide(const cv::Mat& bgra, cv::Point2f from, cv::Point2f to, int reach)
{
    return Fit(bgra, from, to, reach).run();
}

Quad cornersOf(const std::array<FittedSide, 4>& sides)
{
    Quad corners;
    for (std::size_t i = 0; i < 4; ++i) {
        const FittedSide& before = sides[(i + 3) % 4];
        const FittedSide& after = sides[i];
        const cv::Point2f u = before.to - before.from;
        const cv::Point2f v = after.to - after.from;
        const float cross = u.x * v.y - u.y * v.x;
        if (std::abs(cross) < 1e-3F) {
            corners[i] = after.from;
            continue;
        }
        const cv::Point2f w = after.from - before.from;
        corners[i] = before.from + u * ((w.x * v.y - w.y * v.x) / cross);
    }
    return corners;
}

} // namespace kelvara
