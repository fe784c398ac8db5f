#pragma once

#include "Platform/Imaging/ColorKernelProgram.h"
#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// A colour kernel over a rectangle. Inputs and numbers fit the program's parameters, in order.
class ColorKernelNode final : public Node
{
public:
    ColorKernelNode(std::shared_ptr<const KernelProgram> program, std::vector<std::shared_ptr<const Node>> inputs,
        std::vector<float> numbers, const QRect& extent)
        : m_program(std::move(program)), m_inputs(std::move(inputs)), m_numbers(std::move(numbers)), m_extent(extent)
    { }

    [[nodiscard]] QRect extent() const override { return m_extent; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;

private:
    const std::shared_ptr<const KernelProgram> m_program;
    const std::vector<std::shared_ptr<const Node>> m_inputs;
    const std::vector<float> m_numbers;
    const QRect m_extent;
};

} // namespace kelvara::imaging
