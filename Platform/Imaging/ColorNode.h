#pragma once

#include "Platform/Imaging/Node.h"

#include <functional>
#include <span>

namespace kelvara::imaging {

/// Changes pixels of a row in place, each on its own.
using ColorFunction = std::function<void(std::span<Pixel>)>;

/// A recipe whose pixels go through a colour function; the extent stays.
class ColorNode final : public Node
{
public:
    ColorNode(std::shared_ptr<const Node> input, ColorFunction function)
        : m_input(std::move(input)), m_function(std::move(function))
    { }

    [[nodiscard]] QRect extent() const override { return m_input->extent(); }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const Node> m_input;
    const ColorFunction m_function;
};

} // namespace kelvara::imaging
