#include "Tools/Specimen/Things.h"

#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Flesh.h"
#include "Tools/Specimen/Pose.h"

#include <QLinearGradient>
#include <QPainter>

namespace kelvara::specimen {

namespace {

/// A finger from `root` to `tip` (mm), `width` wide, rounded and a little slimmer at the tip.
Limb finger(QPointF root, QPointF tip, double width, bool withNail, const QTransform& pose, double pixelsPerMm)
{
    const QPointF along = tip - root;
    const double length = std::hypot(along.x(), along.y());
    const double r = width / 2;
    const double slim = r * 0.86;
    QPainterPath path;
    path.moveTo(0, -r);
    path.cubicTo(length * 0.35, -r * 0.98, length * 0.6, -r * 1.03, length - r * 1.1, -slim);
    path.cubicTo(length - r * 0.35, -slim * 0.92, length, -slim * 0.55, length, 0);
    path.cubicTo(length, slim * 0.55, length - r * 0.35, slim * 0.92, length - r * 1.1, slim);
    path.cubicTo(length * 0.6, r * 1.03, length * 0.35, r * 0.98, 0, r);
    path.closeSubpath();
    QPainterPath nail;
    if (withNail)
        nail.addRoundedRect(QRectF(length - r * 1.75, -r * 0.58, r * 1.5, r * 1.16), r * 0.5, r * 0.55);
    QTransform place;
    place.translate(root.x(), root.y());
    place.rotateRadians(std::atan2(along.y(), along.x()));
    const QTransform toPicture = place * pose;
    return { toPicture.map(path), toPicture.map(nail), r * pixelsPerMm };
}

double scaleOf(const SceneOptions& options)
{
    return std::max(1.0, options.fill * frameOf(options).width()) / cardWidth;
}

} // namespace

void paintFingers(QImage& picture, const SceneOptions& options)
{
    Dice dice(options.seed, 0xf19e);
    const QTransform pose = poseOf(options);
    const double scale = scaleOf(options);
    // From the right, from the left or from below, as hands do. `edge` runs along the side that is covered.
    const int side = dice.integer(0, 2);
    const double edge = side == 2 ? cardWidth : cardHeight;
    const double covered = edge * dice.real(0.08, 0.15);
    const bool two = side == 2 && covered > 11;
    const double width = two ? covered / 2 : covered;
    const double at = dice.real(-0.30, 0.30) * edge;
    const double inside = dice.real(3.5, 7.5);
    const double lean = dice.real(-14, 14);
    std::vector<Limb> limbs;
    for (int i = 0; i < (two ? 2 : 1); ++i) {
        const double along = at + i * width * 1.02;
        const QPointF root = side == 0 ? QPointF(cardWidth / 2 + 70, along + lean)
            : side == 1                ? QPointF(-cardWidth / 2 - 70, along + lean)
                                       : QPointF(along + lean, cardHeight / 2 + 90);
        const double deep = inside * (i == 0 ? 1 : 0.8);
        const QPointF tip = side == 0 ? QPointF(cardWidth / 2 - deep, along)
            : side == 1               ? QPointF(-cardWidth / 2 + deep, along)
                                      : QPointF(along, cardHeight / 2 - deep);
        limbs.push_back(finger(root, tip, width, true, pose, scale));
    }
    paintLimbs(picture, limbs, dice);
}

void paintHand(QImage& picture, const SceneOptions& options)
{
    Dice dice(options.seed, 0x4a9d);
    SceneOptions placed = options;
    placed.rollDegrees += dice.real(-35, 35);
    const double size = 0.55;
    const QTransform pose = QTransform::fromScale(dice.chance(0.5) ? size : -size, size) * poseOf(placed);
    const double scale = scaleOf(options) * size;
    const double spread = dice.real(0.7, 1.2);
    std::vector<Limb> limbs;
    const auto digit = [&](QPointF root, double degrees, double length, double width) {
        const double angle = (-90 + degrees * spread) * std::numbers::pi / 180;
        limbs.push_back(finger(
            root, root + length * QPointF(std::cos(angle), std::sin(angle)), width, dice.chance(0.0), pose, scale));
    };
    digit({ 6, 170 }, dice.real(-4, 4), 120, 58); // forearm
    digit({ -34, 10 }, -13, 82, 17);
    digit({ -13, 4 }, -4, 92, 18);
    digit({ 9, 5 }, 5, 86, 17.5);
    digit({ 29, 14 }, 16, 68, 15);
    digit({ -26, 62 }, -52, 78, 21);
    QPainterPath palm;
    palm.moveTo(-42, 8);
    palm.cubicTo(-20, -12, 18, -12, 38, 6);
    palm.cubicTo(46, 40, 38, 70, 30, 96);
    palm.cubicTo(10, 104, -14, 104, -26, 94);
    palm.cubicTo(-46, 60, -44, 30, -42, 8);
    limbs.push_back({ pose.map(palm), {}, 22 * scale });
    paintLimbs(picture, limbs, dice);
}

void paintPhone(QImage& picture, const SceneOptions& options)
{
    Dice dice(options.seed, 0x9402);
    SceneOptions placed = options;
    const bool upright = dice.chance(0.5);
    const QRectF frame = frameOf(options);
    // As long as a card would be wide, or as tall as fits when it lies the other way.
    double size = cardWidth / 148;
    if (upright) {
        placed.rollDegrees += 90;
        size *= std::min(1.6, 0.92 * frame.height() / std::max(1.0, options.fill * frame.width()));
    }
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setTransform(QTransform::fromScale(size, size) * poseOf(placed));
    const QRectF slab(-74, -74 / dice.real(1.95, 2.15), 148, 0);
    const QRectF body = slab.adjusted(0, 0, 0, -2 * slab.top());
    painter.setPen(Qt::NoPen);
    for (int i = 6; i > 0; --i) {
        painter.setBrush(QColor(0, 0, 0, 20));
        painter.drawRoundedRect(body.translated(1.2, 1.6).adjusted(-i * 0.7, -i * 0.7, i * 0.7, i * 0.7), 11, 11);
    }
    painter.setBrush(QColor(74, 76, 80));
    painter.drawRoundedRect(body, 10, 10);
    painter.setBrush(QColor(12, 12, 14));
    painter.drawRoundedRect(body.adjusted(0.9, 0.9, -0.9, -0.9), 9.2, 9.2);
    const QRectF screen = body.adjusted(3, 3, -3, -3);
    if (dice.chance(0.5)) {
        QLinearGradient wall(screen.topLeft(), screen.bottomRight());
        for (const double stop : { 0.0, 0.5, 1.0 })
            wall.setColorAt(stop, QColor::fromHsv(dice.integer(0, 359), dice.integer(80, 220), dice.integer(70, 230)));
        painter.setBrush(wall);
        painter.drawRoundedRect(screen, 7, 7);
        for (int column = 0; column < 6; ++column) {
            for (int row = 0; row < 4; ++row) {
                if (dice.chance(0.25))
                    continue;
                painter.setBrush(QColor::fromHsv(dice.integer(0, 359), dice.integer(0, 230), dice.integer(120, 255)));
                painter.drawRoundedRect(
                    QRectF(screen.left() + 14 + column * 19, screen.top() + 6 + row * 14.5, 10, 10), 2.4, 2.4);
            }
        }
    } else {
        QLinearGradient reflex(screen.topLeft(), screen.bottomRight());
        reflex.setColorAt(0, QColor(20, 22, 26));
        reflex.setColorAt(0.45, QColor(40, 44, 50));
        reflex.setColorAt(0.47, QColor(20, 21, 24));
        reflex.setColorAt(1, QColor(14, 14, 16));
        painter.setBrush(reflex);
        painter.drawRoundedRect(screen, 7, 7);
    }
}

} // namespace kelvara::specimen
