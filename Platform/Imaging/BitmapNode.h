#pragma once

#include "Platform/Imaging/Node.h"

namespace kelvara::imaging {

/// The source of every recipe: a bitmap at a place.
class BitmapNode final : public Node
{
public:
    /// Pixels of 32-bit bitmaps with blue first (RGB32, ARGB32_Premultiplied) are shared; others are converted, once.
    explicit BitmapNode(const QImage& bitmap, QPoint origin = {});

    [[nodiscard]] QRect extent() const override { return { m_placed.origin, m_placed.bitmap.size() }; }
    [[nodiscard]] std::unique_ptr<RowRenderer> open() const override;
    [[nodiscard]] const PlacedBitmap* plain() const override { return &m_placed; }

    /// The part within `rect`, which lies within the extent: again a bitmap, of the same bytes.
    [[nodiscard]] std::shared_ptr<const Node> cropped(const QRect& rect) const;

private:
    PlacedBitmap m_placed;
};

} // namespace kelvara::imaging
