#include "Platform/Capture/PreviewMapping.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

QRectF PreviewMapping::pictureRect(const QSizeF& shownSize) const
{
    if (bounds.isEmpty() || shownSize.isEmpty())
        return {};
    if (gravity == AVLayerVideoGravity::Resize)
        return bounds;
    const double across = bounds.width() / shownSize.width();
    const double down = bounds.height() / shownSize.height();
    const double scale
        = gravity == AVLayerVideoGravity::ResizeAspectFill ? std::max(across, down) : std::min(across, down);
    QRectF picture(QPointF(), shownSize * scale);
    picture.moveCenter(bounds.center());
    return picture;
}

QRectF PreviewMapping::metadataOutputRectOfInterest(const QRectF& layerRect, const QSizeF& shownSize) const
{
    const QRectF picture = pictureRect(shownSize);
    if (picture.isEmpty() || layerRect.isEmpty())
        return {};
    double left = (layerRect.left() - picture.left()) / picture.width();
    const double top = (layerRect.top() - picture.top()) / picture.height();
    const double width = layerRect.width() / picture.width();
    const double height = layerRect.height() / picture.height();
    if (mirrored)
        left = 1 - left - width;

    QRectF sensor;
    switch (rotation) {
    case 90:
        sensor = QRectF(top, 1 - left - width, height, width);
        break;
    case 180:
        sensor = QRectF(1 - left - width, 1 - top - height, width, height);
        break;
    case 270:
        sensor = QRectF(1 - top - height, left, height, width);
        break;
    default:
        sensor = QRectF(left, top, width, height);
        break;
    }
    // Sizes next to nothing or beyond all measure divide to infinities.
    const bool finite = std::isfinite(sensor.x()) && std::isfinite(sensor.y()) && std::isfinite(sensor.width())
        && std::isfinite(sensor.height());
    return finite ? sensor : QRectF();
}

} // namespace kelvara
