#include "Platform/Imaging/LanczosNode.h"

#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <numbers>
#include <span>
#include <vector>

namespace kelvara::imaging {

namespace {

using Float4 [[gnu::vector_size(16)]] = float;

constexpr int kLobes = 3;

double lanczos(double x)
{
    if (std::abs(x) < 1e-9)
        return 1.0;
    if (std::abs(x) >= kLobes)
        return 0.0;
    const double t = std::numbers::pi * x;
    return kLobes * std::sin(t) * std::sin(t / kLobes) / (t * t);
}

/// For every output position of one direction: where its input pixels begin and what each weighs.
struct Taps
{
    int count = 0; ///< Of each position.
    std::vector<int> first;
    std::vector<float> weights; ///< `count` for each position; they add up to 1.

    Taps(int outFrom, int outTo, double factor)
    {
        const double stretch = std::max(1.0, 1.0 / factor); // reducing, the kernel covers more input
        count = 2 * int(std::ceil(kLobes * stretch - 1e-9));
        // Enlarged by a whole number, positions have the weights of those so many before them.
        const int period = factor == std::floor(factor) ? int(factor) : INT_MAX;
        for (int out = outFrom; out <= outTo; ++out) {
            if (out - outFrom >= period) {
                const auto before = std::size_t(out - outFrom - period);
                first.push_back(first[before] + 1);
                for (std::size_t i = 0; i < std::size_t(count); ++i)
                    weights.push_back(float { weights[before * std::size_t(count) + i] });
                continue;
            }
            const double center = (out + 0.5) / factor - 0.5;
            first.push_back(int(std::floor(center)) - count / 2 + 1);
            double sum = 0;
            std::vector<double> own;
            for (int i = 0; i < count; ++i) {
                own.push_back(lanczos((first.back() + i - center) / stretch));
                sum += own.back();
            }
            for (const double weight : own)
                weights.push_back(float(weight / sum));
        }
    }
};

QRect scaledExtent(const QRect& input, double horizontal, double vertical)
{
    const auto low = [](int edge, double factor) { return int(std::floor(edge * factor + 1e-9)); };
    const auto high = [](int edge, double factor) { return int(std::ceil(edge * factor - 1e-9)); };
    const int left = low(input.left(), horizontal);
    const int bottom = low(input.top(), vertical);
    return { left, bottom, high(input.right() + 1, horizontal) - left, high(input.bottom() + 1, vertical) - bottom };
}

/// The usual case by vectors of the width of `Wide`.
template<typename Wide>
[[gnu::always_inline]] inline void addSixWeighted(
    std::span<const float* const> lines, const float* weights, std::size_t size, float* to)
{
    constexpr std::size_t step = sizeof(Wide) / sizeof(float);
    std::size_t i = 0;
    for (; i + step <= size; i += step) {
        Wide total {};
        for (std::size_t k = 0; k < 6; ++k) {
            Wide part;
            std::memcpy(&part, lines[k] + i, sizeof part);
            total += weights[k] * part;
        }
        std::memcpy(to + i, &total, sizeof total);
    }
    for (; i < size; ++i) {
        float total = 0;
        for (std::size_t k = 0; k < 6; ++k)
            total += weights[k] * lines[k][i];
        to[i] = total;
    }
}

#if defined(__x86_64__)
// Without fused multiplication, so that every processor gives the same pixels.
using Float8 [[gnu::vector_size(32)]] = float;
[[gnu::target("avx2")]] void addSixWeightedBy8(
    std::span<const float* const> lines, const float* weights, std::size_t size, float* to)
{
    addSixWeighted<Float8>(lines, weights, size, to);
}
#endif

/// to[i] = the sum of weights[k] · lines[k][i].
void addWeighted(std::span<const float* const> lines, const float* weights, std::size_t size, float* to)
{
    if (lines.size() == 6) {
#if defined(__x86_64__)
        static const bool isWide = __builtin_cpu_supports("avx2");
        if (isWide)
            return addSixWeightedBy8(lines, weights, size, to);
#endif
        return addSixWeighted<Float4>(lines, weights, size, to);
    }
    for (std::size_t i = 0; i < size; ++i) {
        float total = 0;
        for (std::size_t k = 0; k < lines.size(); ++k)
            total += weights[k] * lines[k][i];
        to[i] = total;
    }
}

/// Input rows are resampled across once, when first needed, and kept in a ring as long as output rows can need them.
class LanczosRows final : public RowRenderer
{
public:
    LanczosRows(const Node& input, double horizontal, double vertical, const QRect& extent)
        : m_input(input.open()), m_inputExtent(input.extent()), m_extent(extent),
          m_across(extent.left(), extent.right(), horizontal), m_down(extent.top(), extent.bottom(), vertical),
          m_ring(std::size_t(m_down.count))
    { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const auto index = std::size_t(y - m_extent.top());
        const int first = m_down.first[index];
        const float* weights = &m_down.weights[index * std::size_t(m_down.count)];
        m_sources.clear();
        for (int i = 0; i < m_down.count; ++i)
            m_sources.push_back(reinterpret_cast<const float*>(line(first + i) + (x0 - m_extent.left())));
        addWeighted(m_sources, weights, 4 * std::size_t(x1 - x0), reinterpret_cast<float*>(out));
    }

private:
    struct Line
    {
        int y = 0;
        std::vector<Pixel> pixels; ///< Empty as long as nothing is in it.
    };

    const Pixel* line(int y)
    {
        // Rows beyond the edge are kept as rows of their own: rare, and they never push out one that is needed.
        Line& kept = m_ring[std::size_t((y % m_down.count + m_down.count) % m_down.count)];
        if (kept.y != y || kept.pixels.empty()) {
            kept.y = y;
            kept.pixels.resize(std::size_t(m_extent.width()));
            resample(qBound(m_inputExtent.top(), y, m_inputExtent.bottom()), kept.pixels);
        }
        return kept.pixels.data();
    }

    void resample(int y, std::vector<Pixel>& to)
    {
        const int margin = m_across.count;
        const int left = m_inputExtent.left() - margin;
        m_source.resize(std::size_t(m_inputExtent.width() + 2 * margin));
        m_input->row(y, m_inputExtent.left(), m_inputExtent.right() + 1, m_source.data() + margin);
        std::fill_n(m_source.begin(), margin, m_source[std::size_t(margin)]);
        std::fill_n(m_source.end() - margin, margin, *(m_source.end() - margin - 1));
        if (m_across.count == 6)
            return across<6>(left, to);
        across<0>(left, to);
    }

    template<int Count> void across(int left, std::vector<Pixel>& to) const
    {
        const int count = Count > 0 ? Count : m_across.count;
        const float* weights = m_across.weights.data();
        for (std::size_t x = 0; x < to.size(); ++x) {
            const Pixel* source = m_source.data() + (m_across.first[x] - left);
            Float4 total {};
            for (int i = 0; i < count; ++i)
                total += *weights++ * std::bit_cast<Float4>(source[i]);
            to[x] = std::bit_cast<Pixel>(total);
        }
    }

    const std::unique_ptr<RowRenderer> m_input;
    const QRect m_inputExtent;
    const QRect m_extent;
    const Taps m_across;
    const Taps m_down;
    std::vector<Line> m_ring;
    std::vector<const float*> m_sources;
    std::vector<Pixel> m_source;
};

} // namespace

std::shared_ptr<const Node> LanczosNode::make(std::shared_ptr<const Node> input, double horizontal, double vertical)
{
    const auto sensible = [](double factor) { return factor >= 1.0 / 64 && factor <= 64.0; };
    if (!sensible(horizontal) || !sensible(vertical) || input->extent().isEmpty())
        return nullptr;
    // A very large recipe enlarged would leave the range of whole numbers, or take a row's weights and pixels out of
    // the memory.
    const QRect extent = input->extent();
    constexpr double kFarthest = 1 << 29;
    constexpr double kLongestSide = 1 << 17;
    if (extent.width() * std::max(1.0, horizontal) > kLongestSide
        || extent.height() * std::max(1.0, vertical) > kLongestSide)
        return nullptr;
    for (const int edge : { extent.left(), extent.right() }) {
        if (std::abs(edge * horizontal) > kFarthest)
            return nullptr;
    }
    for (const int edge : { extent.top(), extent.bottom() }) {
        if (std::abs(edge * vertical) > kFarthest)
            return nullptr;
    }
    return std::make_shared<LanczosNode>(std::move(input), horizontal, vertical);
}

LanczosNode::LanczosNode(std::shared_ptr<const Node> input, double horizontal, double vertical)
    : m_input(std::move(input)), m_horizontal(horizontal), m_vertical(vertical),
      m_extent(scaledExtent(m_input->extent(), horizontal, vertical))
{ }

std::unique_ptr<RowRenderer> LanczosNode::open() const
{
    return std::make_unique<LanczosRows>(*m_input, m_horizontal, m_vertical, m_extent);
}

} // namespace kelvara::imaging
