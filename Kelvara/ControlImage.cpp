#include "Kelvara/ControlImage.h"

#include "Kelvara/ImageCatalog.h"
#include "Kelvara/PaintScale.h"

#include <QBrush>
#include <QPainterPath>

namespace kelvara {

ControlImage::ControlImage(const UIImage& image) : ControlImage(image.toQImage())
{
    m_size = image.size();
}

ControlImage::ControlImage(const QImage& image)
    : m_name(ImageCatalog::nameOf(image)), m_bitmap(m_name.isEmpty() ? image : QImage()),
      m_size(image.deviceIndependentSize())
{ }

std::optional<ControlImage> ControlImage::named(const QString& name)
{
    ControlImage image;
    image.m_name = name;
    image.m_size = ImageCatalog::naturalSize(name);
    return image.isNull() ? std::nullopt : std::optional(image);
}

const QImage& ControlImage::rendered(const QSize& pixels) const
{
    if (m_rendered.size() == pixels)
        return m_rendered;
    if (m_name.isEmpty())
        m_rendered = m_bitmap.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                         .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    else
        m_rendered = ImageCatalog::render(m_name, pixels);
    m_rendered.setDevicePixelRatio(1.0);
    return m_rendered;
}

void ControlImage::paint(QPainter& painter, const QRectF& target, const QPainterPath& clip) const
{
    const QSize pixels = (target.size() * pixelsPerPoint(painter)).toSize();
    if (isNull() || pixels.isEmpty())
        return;
    const QImage& image = rendered(pixels);
    if (image.isNull())
        return;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (clip.isEmpty()) {
        painter.drawImage(target, image);
    } else {
        QBrush brush(image);
        brush.setTransform(QTransform::fromTranslate(target.x(), target.y())
                               .scale(target.width() / pixels.width(), target.height() / pixels.height()));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(clip, brush);
    }
    painter.restore();
}

} // namespace kelvara
