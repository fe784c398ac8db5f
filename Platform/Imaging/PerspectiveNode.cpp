#include "Platform/Imaging/PerspectiveNode.h"

#include "Platform/Imaging/Srgb.h"

#include <cmath>
#include <map>
#include <vector>

namespace kelvara::imaging
{

namespace
{

/// Where an output pixel's centre falls in the input: the lower-left one of the four neighbouring pixels and how far
/// beyond its centre.
struct Sample {
    int x = 0;
    int y = 0;
    float fx = 0;
    float fy = 0;
    bool inside = false;
};

/// Samples of one output row.
class SampleRow
{
public:
    SampleRow(const Homography& map, const QRect& input, int y)
        : m_map(map)
        , m_input(input)
        , m_y(y + 0.5)
    {
    }

    [[nodiscard]] Sample at(int outX) const
    {
        const QPointF point = m_map.map(outX + 0.5, m_y);
        Sample sample;
        sample.inside = point.x() >= m_input.left() && point.x() <= m_input.right() + 1 && point.y() >= m_input.top()
            && point.y() <= m_input.bottom() + 1;
        if (!sample.inside)
            return sample;
        const double u = qBound<double>(m_input.left(), point.x() - 0.5, m_input.right());
        const double v = qBound<double>(m_input.top(), point.y() - 0.5, m_input.bottom());
        sample.x = int(std::floor(u));
        sample.y = int(std::floor(v));
        sample.fx = float(u - sample.x);
        sample.fy = float(v - sample.y);
        return sample;
    }

private:
    const Homography& m_map;
    const QRect m_input;
    const double m_y;
};

Pixel mixed(const Pixel& p, const Pixel& q, float f)
{
    return { p.r + f * (q.r - p.r), p.g + f * (q.g - p.g), p.b + f * (q.b - p.b), p.a + f * (q.a - p.a) };
}

/// Perspective of a bitmap: pixels are picked from it directly.
class BitmapPerspective final : public RowRenderer
{
public:
    BitmapPerspective(PlacedBitmap source, const Homography& map)
        : m_source(std::move(source))
        , m_extent(m_source.origin, m_source.bitmap.size())
        , m_map(map)
        , m_forced(m_source.bitmap.format() == QImage::Format_RGB32 ? 0xFF000000U : 0U)
    {
    }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const SampleRow samples(m_map, m_extent, y);
        for (int x = x0; x < x1; ++x) {
            const Sample s = samples.at(x);
            *out++ = s.inside ? mixed(pair(s.x, s.y, s.fx), pair(s.x, std::min(s.y + 1, m_extent.bottom()), s.fx), s.fy)
                              : Pixel {};
        }
    }

private:
    [[nodiscard]] Pixel pair(int x, int y, float fx) const
    {
        const auto* line = reinterpret_cast<const QRgb*>(m_source.bitmap.constScanLine(m_extent.bottom() - y));
        const int left = x - m_extent.left();
        const int right = std::min(left + 1, m_extent.width() - 1);
        return mixed(decodedPremultiplied(line[left] | m_forced), decodedPremultiplied(line[right] | m_forced), fx);
    }

    const PlacedBitmap m_source;
    const QRect m_extent;
    const Homography m_map;
    const QRgb m_forced;
};

/// Perspective of any recipe: the input's rows that an output row crosses are kept until no longer needed.
class RecipePerspective final : public RowRenderer
{
public:
    RecipePerspective(std::unique_ptr<RowRenderer> input, const QRect& extent, const Homography& map)
        : m_input(std::move(input))
        , m_extent(extent)
        , m_map(map)
    {
    }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const SampleRow samples(m_map, m_extent, y);
        dropUncrossed(y, x0, x1);
        for (int x = x0; x < x1; ++x) {
            const Sample s = samples.at(x);
            *out++ = s.inside ? mixed(pair(s.x, s.y, s.fx), pair(s.x, std::min(s.y + 1, m_extent.bottom()), s.fx), s.fy)
                              : Pixel {};
        }
    }

private:
    /// A row is mapped to a straight line, so its ends bound the rows that it crosses.
    void dropUncrossed(int y, int x0, int x1)
    {
        const double one = m_map.map(x0 + 0.5, y + 0.5).y();
        const double other = m_map.map(x1 - 0.5, y + 0.5).y();
        std::erase_if(m_rows, [&](const auto& row) {
            return row.first < std::min(one, other) - 2 || row.first > std::max(one, other) + 2;
        });
    }

    [[nodiscard]] Pixel pair(int x, int y, float fx)
    {
        std::vector<Pixel>& line = m_rows[y];
        if (line.empty()) {
            line.resize(std::size_t(m_extent.width()));
            m_input->row(y, m_extent.left(), m_extent.right() + 1, line.data());
        }
        const auto left = std::size_t(x - m_extent.left());
        return mixed(line[left], line[std::min(left + 1, line.size() - 1)], fx);
    }

    const std::unique_ptr<RowRenderer> m_input;
    const QRect m_extent;
    const Homography m_map;
    std::map<int, std::vector<Pixel>> m_rows;
};

} // namespace

std::shared_ptr<const Node> PerspectiveNode::make(std::shared_ptr<const Node> input, const Quad& quad)
{
    const auto size = uprightSize(quad);
    if (!size || input->extent().isEmpty())
        return nullptr;
    return std::make_shared<PerspectiveNode>(std::move(input), *size, rectangleToQuad(*size, quad));
}

std::unique_ptr<RowRenderer> PerspectiveNode::open() const
{
    if (const PlacedBitmap* bitmap = m_input->plain())
        return std::make_unique<BitmapPerspective>(*bitmap, m_toInput);
    return std::make_unique<RecipePerspective>(m_input->open(), m_input->extent(), m_toInput);
}

} // namespace kelvara::imaging
