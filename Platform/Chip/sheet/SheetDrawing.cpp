#include "Platform/Chip/sheet/SheetDrawing.h"

#include "Platform/Chip/sheet/SheetStyle.h"

#include <QEasingCurve>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvara::chip::sheet {

namespace {

constexpr QPointF kMiddle { 120, 90 };
constexpr double kHaloRadius = 84;
constexpr QRectF kPhone { 80, 8, 80, 138 };
constexpr QSizeF kCard { 122, 77 };
constexpr double kCardAtPhone = 108; ///< Where the card's middle is when it is held to the phone.
constexpr double kCardAway = 133;
constexpr double kMarkRadius = 46;

constexpr std::int64_t kApproachPeriod = 2600;
constexpr std::int64_t kWavePeriod = 1400;

double eased(QEasingCurve::Type type, double value)
{
    return QEasingCurve(type).valueForProgress(std::clamp(value, 0.0, 1.0));
}

/// How far a part of a movement has come: 0 before `begin`, 1 after `end`.
double part(double moment, double begin, double end)
{
    return std::clamp((moment - begin) / (end - begin), 0.0, 1.0);
}

QColor faded(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

void drawHalo(QPainter& painter, const QColor& color, double radius, double strength)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(color, strength));
    painter.drawEllipse(kMiddle, radius, radius);
}

/// A phone seen from behind: that is the side the card belongs to.
void drawPhone(QPainter& painter)
{
    QLinearGradient body(kPhone.topLeft(), kPhone.bottomRight());
    body.setColorAt(0, QColor(0x35, 0x4d, 0x5a));
    body.setColorAt(1, QColor(0x16, 0x28, 0x32));
    painter.setPen(QPen(QColor(0x0d, 0x1b, 0x22), 1.5));
    painter.setBrush(body);
    painter.drawRoundedRect(kPhone, 16, 16);
    painter.setPen(QPen(QColor(255, 255, 255, 36), 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(kPhone.adjusted(2.4, 2.4, -2.4, -2.4), 13.6, 13.6);

    const QRectF cameras(kPhone.left() + 8, kPhone.top() + 8, 22, 22);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 26));
    painter.drawRoundedRect(cameras, 8, 8);
    for (const QPointF& lens : { cameras.topLeft() + QPointF(7.2, 7.2), cameras.topLeft() + QPointF(14.8, 14.8) }) {
        painter.setBrush(QColor(0x09, 0x13, 0x18));
        painter.drawEllipse(lens, 4.4, 4.4);
        painter.setBrush(QColor(0x4f, 0x74, 0x86));
        painter.drawEllipse(lens - QPointF(1.1, 1.1), 1.3, 1.3);
    }
}

void drawCard(QPainter& painter, double middleY)
{
    QRectF card(QPointF(), kCard);
    card.moveCenter({ kMiddle.x(), middleY });
    painter.setPen(Qt::NoPen);
    for (double step = 0.5; step <= 6; step += 0.5) { // a soft shadow
        painter.setBrush(QColor(8, 30, 40, 5));
        painter.drawRoundedRect(card.translated(0, 2.5).adjusted(-step, -step, step, step), 8 + step, 8 + step);
    }
    QLinearGradient paper(card.topLeft(), card.bottomRight());
    paper.setColorAt(0, QColor(0xff, 0xff, 0xff));
    paper.setColorAt(1, QColor(0xe2, 0xf1, 0xf4));
    painter.setPen(QPen(QColor(0xc4, 0xd8, 0xde), 1));
    painter.setBrush(paper);
    painter.drawRoundedRect(card, 8, 8);

    const QRectF photo(card.left() + 10, card.top() + 21, 28, 36);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xcd, 0xe7, 0xec));
    painter.drawRoundedRect(photo, 4, 4);
    painter.save();
    QPainterPath frame;
    frame.addRoundedRect(photo, 4, 4);
    painter.setClipPath(frame, Qt::IntersectClip);
    painter.setBrush(kAccent);
    painter.drawEllipse(QPointF(photo.center().x(), photo.top() + 13), 6.4, 7);
    painter.drawEllipse(QPointF(photo.center().x(), photo.bottom() + 3), 11.5, 15);
    painter.restore();

    const auto line = [&](double x, double y, double length, const QColor& color) {
        painter.setBrush(color);
        painter.drawRoundedRect(QRectF(card.left() + x, card.top() + y, length, 4.4), 2.2, 2.2);
    };
    line(10, 9.5, 58, kAccent);
    line(47, 24, 44, QColor(0xa9, 0xc3, 0xcb));
    line(47, 34, 58, QColor(0xc6, 0xd8, 0xde));
    line(47, 44, 36, QColor(0xc6, 0xd8, 0xde));
    line(10, 64.5, 102, QColor(0xd6, 0xe4, 0xe8));

    // The chip.
    const QRectF chip(card.right() - 27, card.top() + 43, 17, 14);
    painter.setPen(QPen(QColor(0xb9, 0x8d, 0x2e), 0.9));
    painter.setBrush(QColor(0xf0, 0xcd, 0x74));
    painter.drawRoundedRect(chip, 3, 3);
    painter.drawLine(QPointF(chip.left(), chip.center().y()), QPointF(chip.left() + 5.5, chip.center().y()));
    painter.drawLine(QPointF(chip.right() - 5.5, chip.center().y()), QPointF(chip.right(), chip.center().y()));
    painter.drawEllipse(chip.center(), 3.2, 3.8);
}

/// Three arcs that open upwards, lit one after the other.
void drawWaves(QPainter& painter, const QPointF& source, const QColor& color, double moment, double opacity)
{
    for (int wave = 0; wave < 3; ++wave) {
        const double distance = std::fmod(moment - wave * 0.18 + 1.0, 1.0);
        const double glow = 0.32 + 0.68 * std::pow(std::max(0.0, std::sin(distance * std::numbers::pi)), 2);
        const double radius = 9 + wave * 9;
        painter.setPen(QPen(faded(color, glow * opacity), 4.2, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(QRectF(source.x() - radius, source.y() - radius, 2 * radius, 2 * radius), 42 * 16, 96 * 16);
    }
}

void drawDevices(QPainter& painter, double cardY, const QColor& waves, double moment, double opacity)
{
    drawPhone(painter);
    drawWaves(painter, { kMiddle.x(), cardY - kCard.height() / 2 - 1 }, waves, moment, opacity);
    drawCard(painter, cardY);
}

/// Where the card is while it is asked for: it comes, stays a while, and goes back.
double approach(std::int64_t milliseconds)
{
    const double moment = double(milliseconds % kApproachPeriod) / kApproachPeriod;
    if (moment < 0.7)
        return eased(QEasingCurve::InOutCubic, part(moment, 0.08, 0.45));
    return 1 - eased(QEasingCurve::InOutCubic, part(moment, 0.72, 1));
}

void strokePart(QPainter& painter, const QPolygonF& line, double fraction)
{
    double length = 0;
    for (qsizetype at = 1; at < line.size(); ++at)
        length += QLineF(line[at - 1], line[at]).length();
    double rest = length * fraction;
    QPainterPath path(line.first());
    for (qsizetype at = 1; at < line.size() && rest > 0; ++at) {
        const QLineF piece(line[at - 1], line[at]);
        path.lineTo(piece.pointAt(std::min(1.0, rest / piece.length())));
        rest -= piece.length();
    }
    painter.drawPath(path);
}

void drawMark(QPainter& painter, SheetPhase phase, double milliseconds)
{
    const bool isDone = phase == SheetPhase::Done;
    const QColor color = isDone ? kSuccess : kFailure;
    const double away = part(milliseconds, 0, 220);
    if (away < 1) {
        painter.setOpacity(1 - away);
        drawDevices(painter, kCardAtPhone, color, 0.5, 1);
        painter.setOpacity(1);
    }
    const double burst = eased(QEasingCurve::OutCubic, part(milliseconds, 160, 760));
    drawHalo(painter, color, kMarkRadius + (kHaloRadius - kMarkRadius) * burst, 0.13 * burst);
    const double grown = isDone ? eased(QEasingCurve::OutBack, part(milliseconds, 80, 420))
                                : eased(QEasingCurve::OutCubic, part(milliseconds, 80, 380));
    if (grown <= 0)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(kMiddle, kMarkRadius * grown, kMarkRadius * grown);
    const double drawn = eased(QEasingCurve::InOutQuad, part(milliseconds, 330, 720));
    if (drawn <= 0)
        return;
    painter.setPen(QPen(Qt::white, 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (isDone) {
        strokePart(
            painter, { kMiddle + QPointF(-19, 1), kMiddle + QPointF(-6, 14), kMiddle + QPointF(20, -13) }, drawn);
        return;
    }
    strokePart(painter, { kMiddle + QPointF(0, -22), kMiddle + QPointF(0, 5) }, part(drawn, 0, 0.8));
    if (drawn > 0.9)
        painter.drawPoint(kMiddle + QPointF(0, 21));
}

} // namespace

void drawScene(QPainter& painter, SheetPhase phase, std::int64_t milliseconds)
{
    const double wave = double(milliseconds % kWavePeriod) / kWavePeriod;
    switch (phase) {
    case SheetPhase::Present:
    case SheetPhase::PresentAgain: {
        const QColor color = phase == SheetPhase::Present ? kAccent : kWarning;
        const double near = approach(milliseconds);
        drawHalo(painter, color, kHaloRadius, 0.13);
        drawDevices(painter, kCardAway + (kCardAtPhone - kCardAway) * near, color, wave, 0.35 + 0.65 * near);
        return;
    }
    case SheetPhase::Reading: {
        // Rings run out from the card for as long as it is read.
        const double run = eased(QEasingCurve::OutQuad, wave);
        drawHalo(painter, kAccent, kHaloRadius, 0.13);
        drawHalo(painter, kAccent, kHaloRadius * (0.55 + 0.45 * run), 0.12 * (1 - run));
        drawDevices(painter, kCardAtPhone, kAccent.lighter(118), wave, 1);
        return;
    }
    case SheetPhase::Done:
    case SheetPhase::Failed:
        drawMark(painter, phase, double(milliseconds));
        return;
    }
}

std::int64_t restingMoment(SheetPhase phase)
{
    switch (phase) {
    case SheetPhase::Present:
    case SheetPhase::PresentAgain:
        return kApproachPeriod * 3 / 10;
    case SheetPhase::Reading:
        return kWavePeriod / 2;
    case SheetPhase::Done:
    case SheetPhase::Failed:
        break;
    }
    return kMarkDrawnAfter;
}

} // namespace kelvara::chip::sheet
