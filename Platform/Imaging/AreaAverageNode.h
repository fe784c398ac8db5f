#pragma once

#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// One pixel at (0, 0): the mean of a rectangle of a recipe, in linear light. Places without pixels count as
/// transparent. The mean is taken when the recipe is rendered.
class AreaAverageNode final : public Node
{
public:
    AreaAverageNode(std::shared_ptr<const Node> input, const QRect& area) : m_input(std::move(input)), m_area(area) { }

    [[nodiscard]] QRect extent() const override { return { 0, 0, 1, 1 }; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const Node> m_input;
    const QRect m_area;
};

} // namespace kelvara::imaging
