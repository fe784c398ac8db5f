#include "Platform/Imaging/AreaAverageNode.h"

#include <optional>
#include <vector>

namespace kelvara::imaging {

namespace {

Pixel meanOf(const Node& input, const QRect& area)
{
    const QRect covered = area & input.extent();
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 0;
    if (!covered.isEmpty()) {
        const auto rows = input.open();
        std::vector<Pixel> line(static_cast<std::size_t>(covered.width()));
        for (int y = covered.bottom(); y >= covered.top(); --y) {
            rows->row(y, covered.left(), covered.right() + 1, line.data());
            Pixel sum; // a row's sum fits a float; the whole image's would lose its last digits
            for (const Pixel& pixel : line) {
                sum.r += pixel.r;
                sum.g += pixel.g;
                sum.b += pixel.b;
                sum.a += pixel.a;
            }
            r += double(sum.r);
            g += double(sum.g);
            b += double(sum.b);
            a += double(sum.a);
        }
    }
    const double count = double(area.width()) * area.height();
    return { float(r / count), float(g / count), float(b / count), float(a / count) };
}

class AverageRow final : public RowRenderer
{
public:
    explicit AverageRow(Pixel mean) : m_mean(mean) { }

    void row(int, int x0, int x1, Pixel* out) override { std::fill(out, out + (x1 - x0), m_mean); }

private:
    const Pixel m_mean;
};

} // namespace

std::unique_ptr<RowRenderer> AreaAverageNode::open() const
{
    return std::make_unique<AverageRow>(meanOf(*m_input, m_area));
}

} // namespace kelvara::imaging
