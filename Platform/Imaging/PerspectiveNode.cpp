#include "Platform/Imaging/PerspectiveNode.h"

#include "Platform/Imaging/Srgb.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <vector>

namespace kelvara::imaging {

namespace {

/// Where an output pixel's centre falls in the input: the lower-left one of the four neighbouring pixels and how far
/// beyond its centre.
struct Sample
{
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
    SampleRow(const Homography& map, const QRect& input, int y) : m_map(map), m_input(input), m_y(y + 0.5) { }

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

using Float4 [[gnu::vector_size(16)]] = float;

Float4 mixed(const Float4& p, const Float4& q, float f)
{
    return p + f * (q - p);
}

Pixel mixed(const Pixel& p, const Pixel& q, float f)
{
    return std::bit_cast<Pixel>(mixed(std::bit_cast<Float4>(p), std::bit_cast<Float4>(q), f));
}

/// Perspective of a bitmap of at least 2 × 2 pixels: the way of every analysed frame. Works on runs of pixels, first
/// all their positions (which the compiler turns into vector instructions), then their colours.
class BitmapPerspective final : public RowRenderer
{
public:
    BitmapPerspective(PlacedBitmap source, const Homography& map)
        : m_source(std::move(source)), m_map(movedBy(map, m_source)),
          m_forced(m_source.bitmap.format() == QImage::Format_RGB32 ? 0xFF000000U : 0U)
    { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        for (int x = x0; x < x1; x += kRun) {
            const int count = std::min(kRun, x1 - x);
            locate(x, y + 0.5);
            for (int i = 0; i < count; ++i)
                *out++ = m_inside[i] ? pick(i) : Pixel {};
        }
    }

private:
    static constexpr int kRun = 64;

    /// The map to positions in the bitmap, from its top-left corner.
    static Homography movedBy(const Homography& map, const PlacedBitmap& source)
    {
        const double left = source.origin.x();
        const double top = source.origin.y() + source.bitmap.height();
        return { map.a - left * map.g, map.b - left * map.h, map.c - left, top * map.g - map.d, top * map.h - map.e,
            top - map.f, map.g, map.h };
    }

    /// Positions of a run. Floats: a 2000th of a pixel is more than enough.
    void locate(int x0, double y)
    {
        const double x = x0 + 0.5;
        const auto u0 = float(m_map.a * x + m_map.b * y + m_map.c);
        const auto v0 = float(m_map.d * x + m_map.e * y + m_map.f);
        const auto w0 = float(m_map.g * x + m_map.h * y + 1.0);
        const auto du = float(m_map.a);
        const auto dv = float(m_map.d);
        const auto dw = float(m_map.g);
        const auto width = float(m_source.bitmap.width());
        const auto height = float(m_source.bitmap.height());
        for (int i = 0; i < kRun; ++i) {
            const auto step = float(i);
            const float scale = 1.0F / (w0 + step * dw);
            const float u = (u0 + step * du) * scale;
            const float v = (v0 + step * dv) * scale;
            m_inside[i] = (u >= 0.0F) & (u <= width) & (v >= 0.0F) & (v <= height);
            const float left = std::min(std::max(u - 0.5F, 0.0F), width - 1.0F);
            const float top = std::min(std::max(v - 0.5F, 0.0F), height - 1.0F);
            m_x[i] = int(std::min(left, width - 2.0F));
            m_y[i] = int(std::min(top, height - 2.0F));
            m_fx[i] = left - float(m_x[i]);
            m_fy[i] = top - float(m_y[i]);
        }
    }

    [[nodiscard]] Pixel pick(int i) const
    {
        const std::ptrdiff_t stride = m_source.bitmap.bytesPerLine();
        const uchar* first = m_bytes + m_y[i] * stride + m_x[i] * 4;
        QRgb upper[2];
        QRgb lower[2];
        std::memcpy(upper, first, sizeof upper);
        std::memcpy(lower, first + stride, sizeof lower);
        const QRgb common = (upper[0] & upper[1] & lower[0] & lower[1]) | m_forced;
        if (common >= 0xFF000000U) {
            const Float4 above = mixed(opaque(upper[0]), opaque(upper[1]), m_fx[i]);
            const Float4 below = mixed(opaque(lower[0]), opaque(lower[1]), m_fx[i]);
            return std::bit_cast<Pixel>(mixed(above, below, m_fy[i]));
        }
        const auto any = [](QRgb pixel) { return std::bit_cast<Float4>(decodedPremultiplied(pixel)); };
        const Float4 above = mixed(any(upper[0]), any(upper[1]), m_fx[i]);
        const Float4 below = mixed(any(lower[0]), any(lower[1]), m_fx[i]);
        return std::bit_cast<Pixel>(mixed(above, below, m_fy[i]));
    }

    static Float4 opaque(QRgb pixel)
    {
        return Float4 { kLinearOfByte[qRed(pixel)], kLinearOfByte[qGreen(pixel)], kLinearOfByte[qBlue(pixel)], 1.0F };
    }

    const PlacedBitmap m_source;
    const uchar* const m_bytes = m_source.bitmap.constBits();
    const Homography m_map;
    const QRgb m_forced;
    std::array<float, kRun> m_fx {};
    std::array<float, kRun> m_fy {};
    std::array<int, kRun> m_x {};
    std::array<int, kRun> m_y {};
    std::array<int, kRun> m_inside {};
};

/// Perspective of any recipe: the input's rows that an output row crosses are kept until no longer needed.
class RecipePerspective final : public RowRenderer
{
public:
    RecipePerspective(std::unique_ptr<RowRenderer> input, const QRect& extent, const Homography& map)
        : m_input(std::move(input)), m_extent(extent), m_map(map)
    { }

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
    const PlacedBitmap* bitmap = m_input->plain();
    if (bitmap && bitmap->bitmap.width() >= 2 && bitmap->bitmap.height() >= 2)
        return std::make_unique<BitmapPerspective>(*bitmap, m_toInput);
    return std::make_unique<RecipePerspective>(m_input->open(), m_input->extent(), m_toInput);
}

} // namespace kelvara::imaging
