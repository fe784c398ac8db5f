#pragma once

#include "Platform/Imaging/Node.h"
#include "Platform/Imaging/Orientation.h"

namespace kelvara::imaging {

/// A recipe turned and mirrored; its lower-left corner stays where it was.
class OrientNode final : public Node
{
public:
    OrientNode(std::shared_ptr<const Node> input, OrientationSteps steps)
        : m_input(std::move(input)), m_steps(steps) { }

    [[nodiscard]] QRect extent() const override;
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const Node> m_input;
    const OrientationSteps m_steps;
};

} // namespace kelvara::imaging
