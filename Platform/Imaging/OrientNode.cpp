#include "Platform/Imaging/OrientNode.h"

#include <vector>

namespace kelvara::imaging {

namespace {

/// Positions here are (column, row from the top) within the input, as orientations are defined on bitmaps.
class FlippedRows final : public RowRenderer
{
public:
    FlippedRows(std::unique_ptr<RowRenderer> input, const QRect& extent, OrientationSteps steps)
        : m_input(std::move(input)), m_extent(extent), m_steps(steps)
    { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const int sourceY = m_steps.flipY ? m_extent.top() + m_extent.bottom() - y : y;
        if (!m_steps.flipX)
            return m_input->row(sourceY, x0, x1, out);
        const int ends = m_extent.left() + m_extent.right();
        m_input->row(sourceY, ends - x1 + 1, ends - x0 + 1, out);
        std::reverse(out, out + (x1 - x0));
    }

private:
    const std::unique_ptr<RowRenderer> m_input;
    const QRect m_extent;
    const OrientationSteps m_steps;
};

/// An output row is an input column. Columns are fetched a block at a time, so that the input's rows are not asked for
/// single pixels.
class TransposedRows final : public RowRenderer
{
public:
    TransposedRows(std::unique_ptr<RowRenderer> input, const QRect& extent, OrientationSteps steps)
        : m_input(std::move(input)), m_extent(extent), m_steps(steps)
    { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const int width = m_extent.width();
        const int height = m_extent.height();
        const int outFromTop = width - 1 - (y - m_extent.top());
        const int column = m_steps.flipX ? width - 1 - outFromTop : outFromTop;
        if (column / kColumns != m_block)
            fetch(column / kColumns);
        for (int x = x0; x < x1; ++x) {
            const int outColumn = x - m_extent.left();
            const int fromTop = m_steps.flipY ? height - 1 - outColumn : outColumn;
            *out++ = m_pixels[std::size_t(fromTop) * kColumns + column % kColumns];
        }
    }

private:
    static constexpr int kColumns = 16;

    void fetch(int block)
    {
        m_pixels.resize(std::size_t(m_extent.height()) * kColumns);
        const int x0 = m_extent.left() + block * kColumns;
        const int x1 = std::min(x0 + kColumns, m_extent.right() + 1);
        for (int fromTop = 0; fromTop < m_extent.height(); ++fromTop)
            m_input->row(m_extent.bottom() - fromTop, x0, x1, &m_pixels[std::size_t(fromTop) * kColumns]);
        m_block = block;
    }

    const std::unique_ptr<RowRenderer> m_input;
    const QRect m_extent;
    const OrientationSteps m_steps;
    std::vector<Pixel> m_pixels; ///< kColumns pixels of every row, topmost first.
    int m_block = -1;
};

} // namespace

QRect OrientNode::extent() const
{
    const QRect input = m_input->extent();
    return m_steps.transpose ? QRect(input.topLeft(), input.size().transposed()) : input;
}

std::unique_ptr<RowRenderer> OrientNode::open() const
{
    if (m_steps.transpose)
        return std::make_unique<TransposedRows>(m_input->open(), m_input->extent(), m_steps);
    return std::make_unique<FlippedRows>(m_input->open(), m_input->extent(), m_steps);
}

} // namespace kelvara::imaging
