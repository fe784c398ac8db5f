#include "Platform/Imaging/CIContext.h"

#include "Platform/Imaging/Node.h"
#include "Platform/Imaging/PixelRect.h"
#include "Platform/Imaging/Srgb.h"

#include <cstring>
#include <vector>

namespace kelvara {

namespace {

using imaging::Node;
using imaging::Pixel;
using imaging::PlacedBitmap;

// Larger bitmaps are never meant: more than 4 times the largest camera's.
constexpr int kLongestSide = 32767;
constexpr qint64 kMostPixels = qint64 { 1 } << 28;

bool isReasonable(const QRect& rect)
{
    return rect.width() <= kLongestSide && rect.height() <= kLongestSide
        && qint64 { rect.width() } * rect.height() <= kMostPixels;
}

/// Gives the rectangle's rows, topmost first, to `take(row from the top, pixels)`. A recipe of just a bitmap is handed
/// on as it is; all others go through linear light.
template<typename Take> void renderRows(const Node& node, const QRect& rect, Take take)
{
    const QRect extent = node.extent();
    const PlacedBitmap* plain = node.plain();
    const auto renderer = plain || extent.isEmpty() ? nullptr : node.open();
    std::vector<Pixel> linear(renderer ? std::size_t(rect.width()) : 0);
    std::vector<QRgb> line(std::size_t(rect.width()));
    for (int y = rect.bottom(); y >= rect.top(); --y) {
        if (renderer) {
            renderRow(*renderer, extent, y, rect.left(), rect.right() + 1, linear.data());
            imaging::encodeRow(linear.data(), rect.width(), line.data());
        } else {
            std::fill(line.begin(), line.end(), 0U);
            const QRect part = QRect(rect.left(), y, rect.width(), 1) & extent;
            if (plain && !part.isEmpty()) {
                const auto* source = reinterpret_cast<const QRgb*>(plain->bitmap.constScanLine(extent.bottom() - y));
                const QRgb forced = plain->bitmap.format() == QImage::Format_RGB32 ? 0xFF000000U : 0U;
                std::transform(source + (part.left() - extent.left()), source + (part.right() + 1 - extent.left()),
                    line.begin() + (part.left() - rect.left()), [forced](QRgb pixel) { return pixel | forced; });
            }
        }
        take(rect.bottom() - y, line);
    }
}

} // namespace

CIContext& CIContext::shared()
{
    static CIContext context;
    return context;
}

std::optional<QImage> CIContext::createCGImage(const CIImage& image, const QRectF& rect) const
{
    const auto integral = imaging::integralRect(rect);
    if (!integral || !isReasonable(*integral))
        return std::nullopt;
    QImage bitmap(integral->size(), QImage::Format_ARGB32_Premultiplied);
    if (bitmap.isNull())
        return std::nullopt;
    renderRows(*image.node(), *integral, [&](int fromTop, const std::vector<QRgb>& line) {
        std::memcpy(bitmap.scanLine(fromTop), line.data(), line.size() * sizeof(QRgb));
    });
    return bitmap;
}

void CIContext::renderRGBA8(const CIImage& image, std::uint8_t* bytes, std::size_t rowBytes, const QRect& bounds) const
{
    if (bounds.isEmpty() || !bytes)
        return;
    renderRows(*image.node(), bounds, [&](int fromTop, const std::vector<QRgb>& line) {
        std::uint8_t* out = bytes + std::size_t(fromTop) * rowBytes;
        for (const QRgb pixel : line) {
            *out++ = std::uint8_t(qRed(pixel));
            *out++ = std::uint8_t(qGreen(pixel));
            *out++ = std::uint8_t(qBlue(pixel));
            *out++ = std::uint8_t(qAlpha(pixel));
        }
    });
}

} // namespace kelvara
