#include "Platform/Imaging/ColorNode.h"

namespace kelvara::imaging {

namespace {

class ColoredRows final : public RowRenderer
{
public:
    ColoredRows(std::unique_ptr<RowRenderer> input, ColorFunction function)
        : m_input(std::move(input)), m_function(std::move(function))
    { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        m_input->row(y, x0, x1, out);
        m_function({ out, static_cast<std::size_t>(x1 - x0) });
    }

private:
    const std::unique_ptr<RowRenderer> m_input;
    const ColorFunction m_function;
};

} // namespace

std::unique_ptr<RowRenderer> ColorNode::open() const
{
    return std::make_unique<ColoredRows>(m_input->open(), m_function);
}

} // namespace kelvara::imaging
