#pragma once

#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// A recipe resampled by a factor in each direction with a Lanczos kernel of three lobes, in linear light. Beyond the
/// input's edge its outermost pixels go on. Enlarging or reducing, position (x, y) becomes (x · horizontal, y ·
/// vertical).
class LanczosNode final : public Node
{
public:
    /// Null when a factor is not a number of 1/64 to 64 or the input is empty, or when a side of the input or the
    /// result is longer than 2¹⁷ pixels.
    [[nodiscard]] static std::shared_ptr<const Node> make(
        std::shared_ptr<const Node> input, double horizontal, double vertical);

    LanczosNode(std::shared_ptr<const Node> input, double horizontal, double vertical);

    [[nodiscard]] QRect extent() const override { return m_extent; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const Node> m_input;
    const double m_horizontal;
    const double m_vertical;
    const QRect m_extent;
};

} // namespace kelvara::imaging
