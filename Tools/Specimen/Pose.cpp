#include "Tools/Specimen/Pose.h"

#include "Tools/Specimen/CardArt.h"

#include <QLineF>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvara::specimen {

namespace {

/// From the lens to the card: what a phone at arm's length over a table has.
constexpr double distance = 1.7 * cardWidth;

} // namespace

QRectF frameOf(const SceneOptions& options)
{
    return options.frame.isNull() ? QRectF(QPointF(0, 0), options.size) : options.frame;
}

QTransform poseOf(const SceneOptions& options)
{
    const QRectF frame = frameOf(options);
    const double scale = std::max(options.fill * frame.width(), 1.0) / cardWidth;
    const double radian = std::numbers::pi / 180;
    // Beyond 75° a card is a line, and its far edge would run through the lens.
    const double pitch = std::clamp(options.pitchDegrees, -75.0, 75.0) * radian;
    const double yaw = std::clamp(options.yawDegrees, -75.0, 75.0) * radian;
    // Turn about the long axis, then about the short one, then see it from `distance`. QTransform takes rows:
    // (x y 1) · M = (x' y' w').
    const double cy = std::cos(yaw);
    const double sy = std::sin(yaw);
    const double cp = std::cos(pitch);
    const double sp = std::sin(pitch);
    // x' = cy·x + sy·sp·y;  y' = cp·y;  depth = −sy·x + cy·sp·y
    const QTransform seen(cy, 0, -sy / distance, sy * sp, cp, cy * sp / distance, 0, 0, 1);
    QTransform place;
    const QPointF centre = frame.center() + options.shift;
    place.translate(centre.x(), centre.y());
    place.rotate(options.rollDegrees);
    place.scale(scale, scale);
    return seen * place;
}

QPolygonF cornersOf(const SceneOptions& options)
{
    const double x = cardWidth / 2;
    const double y = cardHeight / 2;
    const QTransform pose = poseOf(options);
    QPolygonF corners;
    for (const QPointF corner : { QPointF(-x, -y), QPointF(x, -y), QPointF(x, y), QPointF(-x, y) })
        corners << pose.map(corner);
    return corners;
}

double aspectOf(const QPolygonF& corners)
{
    const auto side = [&](int a, int b) { return QLineF(corners[a], corners[b]).length(); };
    return (side(0, 1) + side(3, 2)) / (side(1, 2) + side(0, 3));
}

} // namespace kelvara::specimen
