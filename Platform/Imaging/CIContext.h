#pragma once

#include "Platform/Imaging/CIImage.h"

#include <QImage>
#include <QRectF>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace kelvara {

/// Evaluates filter images, row by row in one pass, without intermediate bitmaps. Colours are worked on in linear
/// light: decoded from sRGB at the source, encoded at the bitmap. Without state of its own; any thread, one rendering
/// at a time on each context.
class CIContext
{
public:
    CIContext() = default;

    /// The process's one shared context, created on first use.
    [[nodiscard]] static CIContext& shared();

    /// The image within the rectangle (origin bottom-left) as a bitmap in `Format_ARGB32_Premultiplied`; transparent
    /// where the image has no pixels. Absent when the rectangle is empty, not finite or unreasonably large.
    [[nodiscard]] std::optional<QImage> createCGImage(const CIImage& image, const QRectF& rect) const;

    /// Renders the bounds of the image as 8-bit R, G, B, A rows into memory, `rowBytes` apart, top row first.
    void renderRGBA8(const CIImage& image, std::uint8_t* bytes, std::size_t rowBytes, const QRect& bounds) const;
};

} // namespace kelvara
