#include "Demo/SpecimenScenes.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara::demo {

namespace {

constexpr double kCornerShare = 3.18 / 85.6; ///< A corner's radius, of the card's width (ISO/IEC 7810, ID-1).
/// Within the plate's spare margin, whatever the shake asks for.
constexpr double kWidestShift = 24;
constexpr double kWidestRoll = 1.0;

/// The outline of a card with rounded corners in a photograph of it.
QPainterPath cardOutline(const QPolygonF& corners)
{
    QPainterPath path;
    const double radius = QLineF(corners[0], corners[1]).length() * kCornerShare;
    for (int i = 0; i < 4; ++i) {
        const QPointF corner = corners[i];
        const auto towards = [&](const QPointF& other) {
            return corner + (other - corner) * (radius / QLineF(corner, other).length());
        };
        const QPointF in = towards(corners[(i + 3) % 4]);
        i == 0 ? path.moveTo(in) : path.lineTo(in);
        path.quadTo(corner, towards(corners[(i + 1) % 4]));
    }
    path.closeSubpath();
    return path;
}

} // namespace

SpecimenScenes::SpecimenScenes(std::uint32_t seed, specimen::ScanAreas areas)
    : m_seed(seed), m_areas(areas), m_data(specimen::SpecimenData::fromSeed(seed))
{ }

specimen::SceneOptions SpecimenScenes::options(Subject subject) const
{
    using specimen::Background;
    constexpr std::array kTables { Background::Wood, Background::Desk, Background::Cloth, Background::Dark };
    const auto shown = subject == Subject::Selfie ? specimen::Subject::Selfie
        : subject == Subject::CardFront           ? specimen::Subject::Front
                                                  : specimen::Subject::Back;
    specimen::SceneOptions options = m_areas.held(shown, m_seed);
    options.size += QSize(2 * kShakeMargin, 2 * kShakeMargin);
    options.frame.translate(kShakeMargin, kShakeMargin);
    options.background = kTables[m_seed % kTables.size()];
    options.shadow = 0.3;
    options.noise = 1.5;
    return options;
}

MovieClip SpecimenScenes::clip(Subject subject) const
{
    const specimen::Scene scene = specimen::photograph(m_data, options(subject));
    MovieClip clip;
    clip.plate = scene.image;
    if (scene.corners)
        clip.outline = cardOutline(*scene.corners);
    return clip;
}

QImage SpecimenScenes::backdrop(Subject subject) const
{
    specimen::SceneOptions empty = options(subject);
    if (subject == Subject::Selfie)
        empty.shift.setY(2.0 * empty.size.height()); // the room, and the person far below
    else
        empty.subject = specimen::Subject::Nothing;
    return specimen::photograph(m_data, empty).image;
}

HandShake SpecimenScenes::shake(double seconds) const
{
    const specimen::SceneOptions steady = options(Subject::CardFront);
    const specimen::SceneOptions now = specimen::shaken(steady, seconds);
    const QPointF shift = now.shift - steady.shift;
    return { { std::clamp(shift.x(), -kWidestShift, kWidestShift), std::clamp(shift.y(), -kWidestShift, kWidestShift) },
        std::clamp(now.rollDegrees - steady.rollDegrees, -kWidestRoll, kWidestRoll) };
}

} // namespace kelvara::demo
