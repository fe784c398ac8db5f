#include "Tools/Specimen/Clutter.h"

#include "Tools/Specimen/SpecimenFonts.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <array>

namespace kelvara::specimen {

namespace {

/// Lines of text in `area` (mm), capitals `cap` high, in paragraphs.
void drawLines(QPainter& painter, const QRectF& area, double cap, Dice& dice)
{
    const SpecimenFonts* fonts = SpecimenFonts::instance();
    static const std::array<QString, 24> words { QStringLiteral("belge"), QStringLiteral("ve"),
        QStringLiteral("kimlik"), QStringLiteral("için"), QStringLiteral("başvuru"), QStringLiteral("the"),
        QStringLiteral("of"), QStringLiteral("tarihinde"), QStringLiteral("söz"), QStringLiteral("konusu"),
        QStringLiteral("şartlar"), QStringLiteral("document"), QStringLiteral("ile"), QStringLiteral("birlikte"),
        QStringLiteral("değerlendirme"), QStringLiteral("uygun"), QStringLiteral("görülmesi"),
        QStringLiteral("halinde"), QStringLiteral("bir"), QStringLiteral("madde"), QStringLiteral("2027"),
        QStringLiteral("ödeme"), QStringLiteral("hükümleri"), QStringLiteral("applies") };
    // In pixels from here on: text is drawn at its own size, which glyph caches make quick.
    const double mm = std::hypot(painter.transform().m11(), painter.transform().m12());
    const int size = static_cast<int>(std::lround(cap * mm / 0.73));
    if (!fonts || size < 3)
        return;
    painter.save();
    painter.scale(1 / mm, 1 / mm);
    painter.setPen(QColor(40, 40, 46, 225));
    const double line = cap * dice.real(2.1, 2.6);
    int left = dice.integer(1, 5);
    for (double y = area.top(); y < area.bottom(); y += line) {
        if (--left < 0) {
            left = dice.integer(4, 11);
            y += line * 0.7;
            continue;
        }
        QString text;
        const double length = area.width() * (left == 0 ? dice.real(0.2, 0.8) : 0.95);
        while (static_cast<double>(text.size()) * cap * 0.86 < length)
            text += dice.pick(std::span<const QString>(words)) + u' ';
        painter.setFont(fonts->font(left == 10 ? SpecimenFonts::Face::SansBold : SpecimenFonts::Face::Sans, size));
        painter.drawText(QPointF(area.left(), y) * mm, text);
    }
    painter.restore();
}

void drawTextPage(QPainter& painter, QSizeF surface, Dice& dice)
{
    painter.save();
    painter.rotate(dice.real(-9, 9));
    const double x = surface.width() / 2;
    const double y = surface.height() * 0.62;
    drawLines(painter, { -0.95 * x, -y, 2 * x, 2 * y }, dice.real(1.5, 2.5), dice);
    painter.restore();
}

void drawKeyboard(QPainter& painter, QSizeF surface, Dice& dice)
{
    const double pitch = 19.0;
    if (std::hypot(painter.transform().m11(), painter.transform().m12()) * pitch < 2)
        return; // a picture too small for keys to be seen could hold hundreds of thousands
    const SpecimenFonts* fonts = SpecimenFonts::instance();
    const bool light = dice.chance(0.4);
    static const QString letters = QStringLiteral("1234567890*-QWERTYUIOPĞÜASDFGHJKLŞİ,ZXCVBNMÖÇ.<>");
    painter.save();
    painter.rotate(dice.real(-14, 14));
    const int rows = static_cast<int>(surface.height() * 0.7 / pitch) + 1;
    const int columns = static_cast<int>(surface.width() * 0.7 / pitch) + 1;
    const QPointF offset(dice.real(0, pitch), dice.real(0, pitch));
    int key = dice.integer(0, 20);
    for (int row = -rows; row <= rows; ++row) {
        for (int column = -columns; column <= columns; ++column) {
            const QPointF at = offset + QPointF((column + 0.27 * (((row % 4) + 4) % 4)) * pitch, row * pitch);
            const QRectF cap(at, QSizeF(17, 17));
            painter.setPen(Qt::NoPen);
            painter.setBrush(light ? QColor(150, 152, 156) : QColor(12, 12, 14));
            painter.drawRoundedRect(cap.translated(0.35, 0.7), 2, 2);
            QLinearGradient top(cap.topLeft(), cap.bottomLeft());
            top.setColorAt(0, light ? QColor(226, 227, 230) : QColor(50, 51, 55));
            top.setColorAt(1, light ? QColor(205, 206, 210) : QColor(34, 35, 38));
            painter.setBrush(top);
            painter.drawRoundedRect(cap, 2, 2);
            painter.setPen(QPen(light ? QColor(245, 245, 246) : QColor(74, 75, 80), 0.25));
            painter.drawLine(cap.topLeft() + QPointF(2, 0.1), cap.topRight() + QPointF(-2, 0.1));
            if (fonts) {
                const QString label(letters[++key % letters.size()]);
                painter.fillPath(fonts->outline(SpecimenFonts::Face::Sans, label, 3.4).translated(at + QPointF(3.2, 7)),
                    light ? QColor(60, 60, 66) : QColor(206, 206, 210));
            }
        }
    }
    painter.restore();
}

/// A place near the view's rim, so that a thing is seen but is not covered whole by the card.
QPointF placeAtRim(QSizeF view, Dice& dice)
{
    const double x = view.width() / 2;
    const double y = view.height() / 2;
    const double side = dice.chance(0.5) ? 1 : -1;
    if (view.height() > view.width() || dice.chance(0.4))
        return { dice.real(-x, x), side * y * dice.real(0.6, 1.0) };
    return { side * x * dice.real(0.8, 1.1), dice.real(-y, y) };
}

void drawPen(QPainter& painter, QSizeF view, Dice& dice)
{
    painter.save();
    painter.translate(placeAtRim(view, dice));
    painter.rotate(dice.real(0, 180));
    const QColor colour = QColor::fromHsv(dice.integer(0, 359), dice.integer(60, 220), dice.integer(50, 200));
    painter.setPen(Qt::NoPen);
    for (int i = 4; i > 0; --i) {
        painter.setBrush(QColor(0, 0, 0, 22));
        painter.drawRoundedRect(QRectF(-70, -4 + 1.5, 140, 8).adjusted(-i * 0.5, -i * 0.5, i * 0.5, i * 0.5), 4, 4);
    }
    QLinearGradient body(0, -4, 0, 4);
    body.setColorAt(0, colour.darker(150));
    body.setColorAt(0.3, colour.lighter(170));
    body.setColorAt(0.5, colour);
    body.setColorAt(1, colour.darker(220));
    painter.setBrush(body);
    painter.drawRoundedRect(QRectF(-58, -4, 122, 8), 3, 3);
    painter.drawPolygon(QPolygonF({ { -58, -3.4 }, { -68, -0.7 }, { -68, 0.7 }, { -58, 3.4 } }));
    painter.restore();
}

void drawCup(QPainter& painter, QSizeF view, Dice& dice)
{
    painter.save();
    painter.translate(placeAtRim(view, dice) * 1.25);
    const double r = dice.real(34, 42);
    QRadialGradient shade(QPointF(4, 6), r + 12);
    shade.setColorAt(0.7, QColor(0, 0, 0, 110));
    shade.setColorAt(1, QColor(0, 0, 0, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.drawEllipse(QPointF(4, 6), r + 12, r + 12);
    const QColor colour = QColor::fromHsv(dice.integer(0, 359), dice.integer(0, 120), dice.integer(120, 240));
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(0, 0), r, r);
    painter.setBrush(colour.darker(130));
    painter.drawEllipse(QPointF(0, 0), r - 3, r - 3);
    painter.setBrush(QColor(46, 26, 14));
    painter.drawEllipse(QPointF(0.6, 1), r - 5, r - 5);
    painter.restore();
}

void drawCable(QPainter& painter, QSizeF view, Dice& dice)
{
    const double x = view.width() * 0.8;
    const double y = view.height() * 0.8;
    const double level = (dice.chance(0.5) ? 1 : -1) * dice.real(0.3, 0.52) * view.height();
    QPainterPath path(QPointF(-x, level + dice.real(-12, 12)));
    path.cubicTo(QPointF(-x * 0.3, level + dice.real(-0.3, 0.3) * y),
        QPointF(x * 0.2, level + dice.real(-0.3, 0.3) * y), QPointF(x, level + dice.real(-20, 20)));
    const bool light = dice.chance(0.5);
    painter.strokePath(path.translated(0.7, 1.2), QPen(QColor(0, 0, 0, 60), 4.6));
    painter.strokePath(path, QPen(light ? QColor(214, 214, 210) : QColor(26, 26, 28), 3.4));
    painter.strokePath(path.translated(-0.3, -0.6), QPen(light ? QColor(240, 240, 238) : QColor(78, 78, 82), 0.8));
}

/// The corner of a sheet that lies partly in view: a straight edge that is no card's.
void drawSheet(QPainter& painter, QSizeF view, Dice& dice)
{
    painter.save();
    painter.translate(placeAtRim(view, dice) * 1.1);
    painter.rotate(dice.real(-30, 30));
    const double quarter = dice.integer(0, 3) * 90;
    painter.rotate(quarter);
    const QRectF sheet(0, 0, 210, 297);
    painter.setPen(Qt::NoPen);
    for (int i = 5; i > 0; --i) {
        painter.setBrush(QColor(0, 0, 0, 16));
        painter.drawRect(sheet.translated(0.4, 0.6).adjusted(-i * 0.5, -i * 0.5, 0, 0));
    }
    const int v = dice.integer(196, 244);
    painter.setBrush(QColor(v, v - dice.integer(0, 6), v - dice.integer(0, 22)));
    painter.drawRect(sheet);
    painter.setClipRect(sheet);
    drawLines(painter, sheet.adjusted(18, 22, -18, -30), dice.real(1.6, 2.2), dice);
    painter.restore();
}

} // namespace

void drawClutter(QPainter& painter, QSizeF surface, QSizeF view, Background background, Dice& dice)
{
    if (background == Background::TextPage)
        drawTextPage(painter, surface, dice);
    if (background == Background::Keyboard)
        drawKeyboard(painter, surface, dice);
    const bool busy = background == Background::TextPage || background == Background::Keyboard;
    if (dice.chance(busy ? 0.15 : 0.4))
        drawSheet(painter, view, dice);
    if (dice.chance(busy ? 0.2 : 0.35))
        drawCable(painter, view, dice);
    if (dice.chance(busy ? 0.1 : 0.3))
        drawCup(painter, view, dice);
    if (dice.chance(0.4))
        drawPen(painter, view, dice);
}

} // namespace kelvara::specimen
