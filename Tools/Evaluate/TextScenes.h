#pragma once

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Scene.h"

#include <QTransform>

#include <algorithm>

namespace kelvara::evaluate {

/// A card's back, held so near that the zone's lines span more than four fifths of the picture.
[[nodiscard]] inline specimen::SceneOptions nearBack(std::uint32_t seed, QSize size = { 1000, 700 })
{
    using namespace specimen;
    Dice dice(seed, 0x7e87);
    SceneOptions options = ordinary(seed, Subject::Back, size);
    do {
        options.fill = dice.real(0.92, 0.99);
        options.rollDegrees = dice.real(-3, 3);
        options.pitchDegrees = dice.real(-8, 8);
        options.yawDegrees = dice.real(-8, 8);
        options.shift = { dice.real(-0.01, 0.01) * size.width(), dice.real(-0.05, 0.05) * size.height() };
        const QPolygonF corners = cornersOf(options);
        const bool isWhole = std::all_of(corners.begin(), corners.end(),
            [size](QPointF p) { return p.x() >= 0 && p.y() >= 0 && p.x() <= size.width() && p.y() <= size.height(); });
        if (isWhole)
            return options;
    } while (true);
}

/// Where the zone's characters lie in the picture: the box around them, in pixels, origin top-left.
[[nodiscard]] inline QRectF zoneIn(const specimen::Scene& scene)
{
    constexpr double width = 85.60;
    constexpr double height = 53.98;
    constexpr QRectF zone((width - 30 * 2.54) / 2, height - 6.2 - 2 * 4.23 - 1.2, 30 * 2.54, 2 * 4.23 + 2.4);
    QTransform toPicture;
    if (!QTransform::quadToQuad(
            QPolygonF({ { 0, 0 }, { width, 0 }, { width, height }, { 0, height } }), *scene.corners, toPicture))
        return {};
    return toPicture.map(QPolygonF(zone)).boundingRect();
}

/// What the card step makes of text lines: the box around those wider than four fifths of the picture (Vision's
/// coordinates in, pixels with the origin at the top left out).
template<typename Observations> [[nodiscard]] QRectF wideBand(const Observations& lines, QSizeF size)
{
    QRectF band;
    for (const auto& line : lines) {
        const QRectF& box = line.boundingBox;
        if (box.width() > 0.8)
            band |= QRectF(box.x() * size.width(), (1 - box.y() - box.height()) * size.height(),
                box.width() * size.width(), box.height() * size.height());
    }
    return band.height() > 0.4 * size.height() ? QRectF() : band;
}

} // namespace kelvara::evaluate
