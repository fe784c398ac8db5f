#include "Tools/Specimen/CardArt.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <array>
#include <cmath>
#include <numbers>

namespace kelvara::specimen {

namespace {

constexpr double turn = 2 * std::numbers::pi;

struct Rosette
{
    QPointF centre;
    double radius;
    double wave;
    int petals;
    int rings;
    QColor colour;
};

/// Rings that wave in and out, each a little turned against the last: the classic engraved rosette.
void drawRosette(QPainter& painter, const Rosette& r)
{
    painter.setPen(QPen(r.colour, 0.09));
    for (int ring = 0; ring < r.rings; ++ring) {
        const double part = (ring + 1.0) / r.rings;
        QPainterPath path;
        const int steps = r.petals * 14;
        for (int i = 0; i <= steps; ++i) {
            const double angle = turn * i / steps;
            const double phase = part * 2.2;
            const double radius = r.radius * (part + r.wave * std::sin(r.petals * (angle + phase)));
            const QPointF p = r.centre + radius * QPointF(std::cos(angle), 0.9 * std::sin(angle));
            if (i == 0)
                path.moveTo(p);
            else
                path.lineTo(p);
        }
        painter.drawPath(path);
    }
}

/// A band of fine lines between two waves.
void drawWaves(QPainter& painter, double top, double spread, int lines, double length, const QColor& colour)
{
    painter.setPen(QPen(colour, 0.08));
    for (int line = 0; line < lines; ++line) {
        const double part = static_cast<double>(line) / lines;
        QPainterPath path;
        for (double x = -1; x <= cardWidth + 1; x += 0.55) {
            const double a = std::sin(turn * x / length);
            const double b = std::sin(turn * x / (length * 0.618) + 1.3);
            const double y = top + spread * (part + 0.42 * (1 - part) * a + 0.36 * part * b);
            if (path.elementCount() == 0)
                path.moveTo(x, y);
            else
                path.lineTo(x, y);
        }
        painter.drawPath(path);
    }
}

} // namespace

void drawSecurityBackground(QPainter& painter, bool front)
{
    const QRectF card(0, 0, cardWidth, cardHeight);
    QLinearGradient run(0, 0, cardWidth, cardHeight * (front ? 0.7 : -0.5));
    if (front) {
        run.setColorAt(0.00, QColor(196, 222, 226));
        run.setColorAt(0.35, QColor(224, 232, 222));
        run.setColorAt(0.65, QColor(238, 222, 212));
        run.setColorAt(1.00, QColor(204, 216, 232));
    } else {
        run.setColorAt(0.00, QColor(214, 228, 226));
        run.setColorAt(0.50, QColor(236, 232, 218));
        run.setColorAt(1.00, QColor(206, 222, 234));
    }
    painter.fillRect(card, run);
    painter.setBrush(Qt::NoBrush);
    if (front) {
        drawWaves(painter, 10, 13, 26, 31, QColor(70, 140, 160, 70));
        drawWaves(painter, 28, 19, 30, 43, QColor(190, 110, 110, 62));
        drawRosette(painter, { { 60, 29 }, 17, 0.10, 12, 22, QColor(60, 120, 150, 60) });
        drawRosette(painter, { { 78, 46 }, 10, 0.13, 9, 16, QColor(180, 80, 90, 62) });
        drawRosette(painter, { { 8, 8 }, 11, 0.12, 8, 14, QColor(40, 120, 120, 55) });
    } else {
        drawWaves(painter, 3, 22, 30, 37, QColor(90, 130, 170, 66));
        drawWaves(painter, 30, 17, 18, 47, QColor(170, 130, 90, 42));
        drawRosette(painter, { { 64, 17 }, 14, 0.11, 11, 20, QColor(150, 80, 110, 55) });
        drawRosette(painter, { { 14, 22 }, 10, 0.12, 8, 16, QColor(50, 130, 130, 55) });
    }
}

void drawBarCode(QPainter& painter, const QString& text, const QRectF& area)
{
    static const QString alphabet = QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ*");
    // Code 39: nine elements a character, bar first; 1 is wide.
    static constexpr std::array<const char*, 37> patterns { "000110100", "100100001", "001100001", "101100000",
        "000110001", "100110000", "001110000", "000100101", "100100100", "001100100", "100001001", "001001001",
        "101001000", "000011001", "100011000", "001011000", "000001101", "100001100", "001001100", "000011100",
        "100000011", "001000011", "101000010", "000010011", "100010010", "001010010", "000000111", "100000110",
        "001000110", "000010110", "110000001", "011000001", "111000000", "010010001", "110010000", "011010000",
        "010010100" };
    constexpr double wide = 2.5;
    const QString coded = u'*' + text + u'*';
    const double units = static_cast<double>(coded.size()) * (6 + 3 * wide + 1) - 1;
    const double unit = area.width() / units;
    double x = area.left();
    for (const QChar c : coded) {
        const qsizetype at = alphabet.indexOf(c);
        if (at < 0)
            continue;
        const char* pattern = patterns[static_cast<std::size_t>(at)];
        for (int i = 0; i < 9; ++i) {
            const double width = unit * (pattern[i] == '1' ? wide : 1);
            if (i % 2 == 0)
                painter.fillRect(QRectF(x, area.top(), width, area.height()), QColor(28, 28, 32));
            x += width;
        }
        x += unit;
    }
}

void drawFlag(QPainter& painter, const QRectF& area)
{
    // Drawn 100 units high: curves are flattened before they are scaled.
    constexpr double height = 100;
    painter.save();
    painter.translate(area.topLeft());
    painter.scale(area.height() / height, area.height() / height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(206, 34, 46));
    painter.drawRoundedRect(QRectF(0, 0, height * area.width() / area.height(), height), 6, 6);
    painter.setBrush(Qt::white);
    QPainterPath outer;
    outer.addEllipse(QPointF(50, 50), 25, 25);
    QPainterPath inner;
    inner.addEllipse(QPointF(56.25, 50), 20, 20);
    painter.drawPath(outer.subtracted(inner));
    QPolygonF star;
    for (int i = 0; i < 5; ++i) {
        const double angle = std::numbers::pi + turn * i * 2 / 5;
        star << QPointF(82, 50) + 12.5 * QPointF(std::cos(angle), std::sin(angle));
    }
    painter.drawPolygon(star, Qt::WindingFill);
    painter.restore();
}

} // namespace kelvara::specimen
