#pragma once

#include "Platform/Imaging/Homography.h"
#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// A quadrilateral of a recipe made an upright rectangle: (0, 0, `uprightSize`). Pixels are interpolated bilinearly in
/// linear light; at the input's edge its outermost pixels go on up to the edge, and beyond it there is nothing.
class PerspectiveNode final : public Node
{
public:
    /// Null when the quadrilateral has no `uprightSize`.
    [[nodiscard]] static std::shared_ptr<const Node> make(std::shared_ptr<const Node> input, const Quad& quad);

    PerspectiveNode(std::shared_ptr<const Node> input, QSize size, const Homography& toInput)
        : m_input(std::move(input)), m_size(size), m_toInput(toInput)
    { }

    [[nodiscard]] QRect extent() const override { return { QPoint(), m_size }; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const Node> m_input;
    const QSize m_size;
    const Homography m_toInput;
};

} // namespace kelvara::imaging
