#include "Platform/Imaging/CGImage.h"

#include "Platform/Imaging/PixelRect.h"

#include <QColorSpace>

#include <cmath>
#include <memory>

namespace kelvara {

namespace {

/// A view of the rectangle, which lies within the bitmap: the same bytes, kept alive by the view.
QImage viewInto(const QImage& bitmap, const QRect& rect)
{
    auto owner = std::make_unique<QImage>(bitmap);
    const uchar* first = owner->constScanLine(rect.y()) + std::ptrdiff_t { rect.x() } * (bitmap.depth() / 8);
    QImage view(
        first, rect.width(), rect.height(), bitmap.bytesPerLine(), bitmap.format(),
        [](void* held) { delete static_cast<QImage*>(held); }, owner.get());
    if (view.isNull())
        return bitmap.copy(rect);
    [[maybe_unused]] const QImage* handedOver = owner.release();
    if (bitmap.colorCount() > 0)
        view.setColorTable(bitmap.colorTable());
    if (bitmap.colorSpace().isValid())
        view.setColorSpace(bitmap.colorSpace());
    view.setDevicePixelRatio(bitmap.devicePixelRatio());
    return view;
}

} // namespace

std::optional<QRect> imaging::integralRect(const QRectF& rect)
{
    constexpr double limit = 1 << 29; // so that a difference of two still is an int
    const QRectF box = rect.normalized();
    const double left = std::floor(box.left());
    const double top = std::floor(box.top());
    const double right = std::ceil(box.right());
    const double bottom = std::ceil(box.bottom());
    // Written so that a NaN anywhere fails.
    if (!(left >= -limit && top >= -limit && right <= limit && bottom <= limit) || !(box.width() > 0)
        || !(box.height() > 0))
        return std::nullopt;
    return QRect(int(left), int(top), int(right - left), int(bottom - top));
}

std::optional<QImage> cropping(const QImage& bitmap, const QRectF& rect)
{
    const auto integral = imaging::integralRect(rect);
    const QRect part = integral ? *integral & bitmap.rect() : QRect();
    if (part.isEmpty())
        return std::nullopt;
    if (part == bitmap.rect())
        return bitmap;
    return bitmap.depth() < 8 ? bitmap.copy(part) : viewInto(bitmap, part);
}

QPointF scaled(const QPointF& point, const QSizeF& size)
{
    return { point.x() * size.width(), point.y() * size.height() };
}

QRectF scaled(const QRectF& rect, const QSizeF& size)
{
    return { rect.x() * size.width(), rect.y() * size.height(), rect.width() * size.width(),
        rect.height() * size.height() };
}

} // namespace kelvara
