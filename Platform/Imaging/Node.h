#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

#include <algorithm>
#include <memory>

namespace kelvara::imaging {

/// One pixel in linear light, colours multiplied by alpha. 1 is white; values beyond 0…1 are kept until the bitmap.
struct alignas(16) Pixel
{
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 0;
};

/// One node's work during one rendering, with whatever it must remember from row to row. One thread.
class RowRenderer
{
public:
    RowRenderer() = default;
    virtual ~RowRenderer() = default;
    RowRenderer(const RowRenderer&) = delete;
    RowRenderer& operator=(const RowRenderer&) = delete;

    /// Writes pixels x0 … x1 − 1 of row y to out[0] …; all of them lie within the node's extent. Rows may be asked for
    /// in any order and any number of times; callers go from top to bottom, which renderers may count on for speed.
    virtual void row(int y, int x0, int x1, Pixel* out) = 0;
};

/// A recipe's pixels when they are simply those of a bitmap.
struct PlacedBitmap
{
    QImage bitmap; ///< RGB32 or ARGB32_Premultiplied; its row 0 is the picture's top.
    QPoint origin; ///< Where its lower-left corner lies.
};

/// A step of a recipe. Immutable, so any thread may open it. Origin bottom-left, in pixels: the rectangle (x, y, w, h)
/// has its lowest row at y, and row y covers the heights y to y + 1.
class Node
{
public:
    Node() = default;
    virtual ~Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    /// Where there are pixels; empty when there are none (then it is never opened).
    [[nodiscard]] virtual QRect extent() const = 0;

    [[nodiscard]] virtual std::unique_ptr<RowRenderer> open() const = 0;

    /// The bitmap that the recipe consists of; null when there is work to do. Valid as long as the node.
    [[nodiscard]] virtual const PlacedBitmap* plain() const { return nullptr; }
};

/// Row y of a node's renderer where it has pixels, transparent elsewhere.
inline void renderRow(RowRenderer& renderer, const QRect& extent, int y, int x0, int x1, Pixel* out)
{
    const bool any = y >= extent.top() && y <= extent.bottom();
    const int from = any ? qBound(x0, extent.left(), x1) : x1;
    const int to = any ? qBound(from, extent.right() + 1, x1) : x1;
    std::fill(out, out + (from - x0), Pixel {});
    if (from < to)
        renderer.row(y, from, to, out + (from - x0));
    std::fill(out + (to - x0), out + (x1 - x0), Pixel {});
}

} // namespace kelvara::imaging
