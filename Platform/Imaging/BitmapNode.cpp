#include "Platform/Imaging/BitmapNode.h"

#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/Srgb.h"

namespace kelvara::imaging {

namespace {

QImage workable(const QImage& bitmap)
{
    if (bitmap.format() == QImage::Format_RGB32 || bitmap.format() == QImage::Format_ARGB32_Premultiplied)
        return bitmap;
    return bitmap.convertToFormat(
        bitmap.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

class BitmapRows final : public RowRenderer
{
public:
    explicit BitmapRows(PlacedBitmap source) : m_source(std::move(source)) { }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        const QImage& bitmap = m_source.bitmap;
        const int fromTop = bitmap.height() - 1 - (y - m_source.origin.y());
        const auto* pixels = reinterpret_cast<const QRgb*>(bitmap.constScanLine(fromTop));
        decodeRow(pixels + (x0 - m_source.origin.x()), x1 - x0, bitmap.format() == QImage::Format_RGB32, out);
    }

private:
    const PlacedBitmap m_source;
};

} // namespace

BitmapNode::BitmapNode(const QImage& bitmap, QPoint origin) : m_placed { workable(bitmap), origin } { }

std::unique_ptr<RowRenderer> BitmapNode::open() const
{
    return std::make_unique<BitmapRows>(m_placed);
}

std::shared_ptr<const Node> BitmapNode::cropped(const QRect& rect) const
{
    QRect part = rect.translated(-m_placed.origin);
    part.moveTop(m_placed.bitmap.height() - part.y() - part.height()); // rows count from the top there
    return std::make_shared<BitmapNode>(cropping(m_placed.bitmap, part).value_or(QImage()), rect.topLeft());
}

} // namespace kelvara::imaging
