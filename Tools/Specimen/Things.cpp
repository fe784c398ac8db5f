#include "Tools/Specimen/Things.h"

#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Flesh.h"
#include "Tools/Specimen/Pose.h"

#include <QLinearGradient>
#include <QPainter>

namespace kelvara::specimen {

namespace {

/// A finger in millimetres: it comes from `root`, and its rounded tip ends at `tip`.
struct Finger
{
    QPointF root;
    QPointF tip;
    double width;
    bool nail;
};

/// The tip is half an ellipse: this much longer than its half width.
constexpr double tipLength = 1.15;

void addFinger(Limb& limb, const Finger& finger, Dice& dice)
{
    const QPointF along = finger.tip - finger.root;
    const double length = std::hypot(along.x(), along.y());
    const double r = finger.width / 2;
    const double round = tipLength * r;
    QTransform place;
    place.translate(finger.root.x(), finger.root.y());
    place.rotateRadians(std::atan2(along.y(), along.x()));
    QPainterPath path(QPointF(0, -1.1 * r));
    path.cubicTo(length * 0.4, -1.1 * r, length * 0.55, -r, length - round, -r);
    path.arcTo(QRectF(length - 2 * round, -r, 2 * round, 2 * r), 90, -180);
    path.cubicTo(length * 0.55, r, length * 0.4, 1.1 * r, 0, 1.1 * r);
    path.closeSubpath();
    limb.outline = limb.outline.united(place.map(path));
    if (finger.nail) {
        QPainterPath nail;
        nail.addRoundedRect(QRectF(length - r * 1.75, -r * 0.56, r * 1.5, r * 1.12), r * 0.5, r * 0.55);
        limb.nails.addPath(place.map(nail));
    }
    for (const double joint : { 3.1, 6.6 }) {
        for (int i = 0; i < 2; ++i) {
            const double x = length - joint * r + (i - 0.5) * r * dice.real(0.25, 0.45);
            QPainterPath crease(QPointF(x, -0.6 * r));
            crease.quadTo(x + r * dice.real(-0.2, 0.2), 0, x, 0.6 * r);
            limb.creases.addPath(place.map(crease));
        }
    }
}

/// Takes the limb from millimetres to the picture.
Limb seen(const Limb& limb, const QTransform& pose, double roundnessMm, double pixelsPerMm)
{
    return { pose.map(limb.outline), pose.map(limb.nails), pose.map(limb.creases), roundnessMm * pixelsPerMm };
}

double scaleOf(const SceneOptions& options)
{
    return std::max(1.0, options.fill * frameOf(options).width()) / cardWidth;
}

} // namespace

void paintFingers(QImage& picture, const SceneOptions& options)
{
    Dice dice(options.seed, 0xf19e);
    // From the right, from the left or from below, as hands do. A finger is wider than what it may cover of a short
    // edge: then only its round tip looks over.
    const int side = dice.integer(0, 3);
    const double edge = side >= 2 ? cardWidth : cardHeight;
    const double covered = edge * (side >= 2 ? dice.real(0.085, 0.145) : dice.real(0.115, 0.15));
    const double width = std::max(covered, dice.real(12, 14));
    const double r = width / 2;
    const double chord = std::sqrt(std::max(0.0, 1 - covered * covered / (width * width)));
    const double deep = tipLength * r * (1 - chord) + (chord < 0.01 ? dice.real(0, 9) : 0);
    const double at = dice.real(-0.30, 0.30) * edge;
    const double lean = dice.real(-5, 5);
    Finger finger { {}, {}, width, dice.chance(0.75) };
    if (side >= 2) {
        finger.root = { at + lean, cardHeight / 2 + 95 };
        finger.tip = { at, cardHeight / 2 - deep };
    } else {
        const double sign = side == 0 ? 1 : -1;
        finger.root = { sign * (cardWidth / 2 + 75), at + lean };
        finger.tip = { sign * (cardWidth / 2 - deep), at };
    }
    Limb limb;
    addFinger(limb, finger, dice);
    paintLimb(picture, seen(limb, poseOf(options), r, scaleOf(options)), dice);
}

void paintHand(QImage& picture, const SceneOptions& options)
{
    Dice dice(options.seed, 0x4a9d);
    SceneOptions placed = options;
    placed.rollDegrees += dice.real(-35, 35);
    const double size = 0.5;
    const QTransform pose = QTransform::fromScale(dice.chance(0.5) ? size : -size, size) * poseOf(placed);
    const double spread = dice.real(0.6, 1.25);
    const bool back = dice.chance(0.6);
    Limb limb;
    const auto digit = [&](QPointF root, double degrees, double length, double width) {
        const double angle = (-90 + degrees * spread) * std::numbers::pi / 180;
        const QPointF tip = root + length * QPointF(std::cos(angle), std::sin(angle));
        addFinger(limb, { root, tip, width, back }, dice);
    };
    QPainterPath palm(QPointF(-44, 10));
    palm.cubicTo(-24, -8, 22, -8, 40, 12);
    palm.cubicTo(47, 44, 41, 74, 31, 98);
    palm.cubicTo(27, 122, 30, 170, 32, 300);
    palm.lineTo(-30, 300);
    palm.cubicTo(-30, 170, -28, 122, -30, 98);
    palm.cubicTo(-44, 70, -47, 40, -44, 10);
    limb.outline = palm;
    digit({ -33, 30 }, -12, 100, 18);
    digit({ -11, 30 }, -4, 116, 19);
    digit({ 11, 30 }, 4, 110, 18.5);
    digit({ 31, 34 }, 14, 88, 16);
    digit({ -28, 84 }, -46, 96, 22);
    paintLimb(picture, seen(limb, pose, 11, scaleOf(options) * size), dice);
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
