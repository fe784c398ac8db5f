#pragma once

#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// A recipe limited to a rectangle within its extent.
class CropNode final : public Node
{
public:
    CropNode(std::shared_ptr<const Node> input, const QRect& rect) : m_input(std::move(input)), m_rect(rect) { }

    [[nodiscard]] QRect extent() const override { return m_rect; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override { return m_input->open(); }

private:
    const std::shared_ptr<const Node> m_input;
    const QRect m_rect;
};

} // namespace kelvara::imaging
