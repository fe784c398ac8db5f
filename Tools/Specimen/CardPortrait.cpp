#include "Tools/Specimen/CardPortrait.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Person.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace kelvara::specimen {

namespace {

/// The part of the person's picture that the portrait shows: the face 59 % of its width, the head a little high.
QRectF crop(const Person& person, const QRectF& area)
{
    const double width = person.face.width() / 0.59;
    const double height = width * area.height() / area.width();
    return { person.face.center().x() - width / 2, person.face.center().y() - height * 0.51, width, height };
}

/// Draws `part` of `image` into `area`, averaging first when the print is much smaller than the picture.
void drawReduced(QPainter& painter, const QRectF& area, const QImage& image, const QRectF& part)
{
    const int shrink = static_cast<int>(part.width() / std::max(1.0, area.width() * painter.transform().m11()));
    if (shrink < 2) {
        painter.drawImage(area, image, part);
        return;
    }
    const QImage small = image.scaled(
        image.width() / shrink, image.height() / shrink, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double x = static_cast<double>(small.width()) / image.width();
    const double y = static_cast<double>(small.height()) / image.height();
    painter.drawImage(area, small, { part.x() * x, part.y() * y, part.width() * x, part.height() * y });
}

} // namespace

void drawPortrait(QPainter& painter, std::uint32_t seed, const QRectF& area)
{
    const auto person = personOf(seed);
    Dice dice(seed, 0x3a11);
    const int light = dice.integer(196, 236);
    const int warm = dice.integer(-8, 6);
    QLinearGradient wall(area.topLeft(), area.bottomRight());
    wall.setColorAt(0, QColor(light + 6 + warm, light + 6, light + 8 - warm));
    wall.setColorAt(1, QColor(light - 16 + warm, light - 16, light - 12 - warm));
    painter.save();
    painter.setClipRect(area);
    painter.fillRect(area, wall);
    drawReduced(painter, area, person->image, crop(*person, area));
    if (dice.chance(0.35)) {
        // A line screen, as some printers leave it.
        painter.setPen(QPen(QColor(255, 255, 255, 34), 0.09));
        for (double y = area.top(); y < area.bottom(); y += 0.2)
            painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    painter.restore();
}

void drawGhostPortrait(QPainter& painter, std::uint32_t seed, const QRectF& area)
{
    const auto person = personOf(seed);
    const QRectF part = crop(*person, area);
    const QImage grey = person->image.copy(part.toAlignedRect()).convertToFormat(QImage::Format_Grayscale8);
    QImage tinted = person->image.copy(part.toAlignedRect());
    for (int y = 0; y < tinted.height(); ++y) {
        auto* out = reinterpret_cast<QRgb*>(tinted.scanLine(y));
        const uchar* in = grey.constScanLine(y);
        for (int x = 0; x < tinted.width(); ++x) {
            const int a = qAlpha(out[x]);
            const int v = std::min<int>(a, in[x]);
            out[x] = qRgba(v * 7 / 8, v, v, a);
        }
    }
    painter.save();
    painter.setOpacity(0.42);
    drawReduced(painter, area, tinted, tinted.rect());
    painter.setOpacity(0.25);
    painter.setPen(QPen(Qt::white, 0.1));
    for (double y = area.top(); y < area.bottom(); y += 0.4)
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    painter.restore();
}

QRectF faceInPortrait(std::uint32_t seed, const QRectF& area)
{
    const auto person = personOf(seed);
    const QRectF part = crop(*person, area);
    const double scale = area.width() / part.width();
    return { area.left() + (person->face.left() - part.left()) * scale,
        area.top() + (person->face.top() - part.top()) * scale, person->face.width() * scale,
        person->face.height() * scale };
}

} // namespace kelvara::specimen
