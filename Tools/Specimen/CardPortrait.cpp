#include "Tools/Specimen/CardPortrait.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Person.h"

#include <QLinearGradient>
#include <QPainter>

namespace kelvara::specimen {

namespace {

/// The part of the person's picture that the portrait shows: the face 59 % of its width, the head a little high.
QRectF crop(const Person& person, const QRectF& area)
{
    const double width = person.face.width() / 0.59;
    const double height = width * area.height() / area.width();
    return { person.face.center().x() - width / 2, person.face.center().y() - height * 0.51, width, height };
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
    painter.drawImage(area, person->image, crop(*person, area));
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
    painter.drawImage(area, tinted);
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
