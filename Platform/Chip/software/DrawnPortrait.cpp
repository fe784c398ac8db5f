#include "Platform/Chip/software/DrawnPortrait.h"

#include <QPainter>
#include <QPainterPath>

namespace kelvara::chip::software {

QImage drawnPortrait(bool isAnotherPerson)
{
    QImage picture(413, 531, QImage::Format_RGB32);
    picture.fill(QColor(0xE4, 0xE8, 0xEC));
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isAnotherPerson ? QColor(0x8A, 0x6D, 0x5B) : QColor(0x6B, 0x7C, 0x8C));
    QPainterPath person;
    person.setFillRule(Qt::WindingFill);
    person.addEllipse(QRectF(121, 90, 171, 228)); // head
    person.addRect(QRectF(164, 270, 85, 110)); // neck
    person.addRoundedRect(QRectF(46, 360, 321, 260), 110, 110); // shoulders, running out of the picture
    painter.drawPath(person);
    return picture;
}

} // namespace kelvara::chip::software
