#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvara::specimen {

namespace {

/// What a detector for ID-1 cards must still take, with a little air on both sides.
constexpr double smallestAspect = 1.35;
constexpr double largestAspect = 1.60;

bool isWhole(const QPolygonF& corners, QSize size)
{
    return std::all_of(corners.begin(), corners.end(),
        [size](QPointF p) { return p.x() >= 0 && p.y() >= 0 && p.x() <= size.width() && p.y() <= size.height(); });
}

void drawPose(SceneOptions& options, Dice& dice)
{
    options.fill = dice.real(0.60, 0.99);
    options.rollDegrees = dice.real(-7, 7);
    options.pitchDegrees = dice.real(-12, 12);
    options.yawDegrees = dice.real(-16, 16);
    // The hand aims well when the card nearly fills the frame, and loosely when it does not.
    const double air = (1 - options.fill) * frameOf(options).width() / 2;
    options.shift = { dice.real(-0.8, 0.8) * air, dice.real(-0.8, 0.8) * air };
}

} // namespace

SceneOptions ordinary(std::uint32_t seed, Subject subject, QSize size)
{
    Dice dice(seed, 0x0bd1 + static_cast<std::uint32_t>(subject));
    SceneOptions options;
    options.seed = seed;
    options.size = size;
    options.subject = subject;
    options.background = static_cast<Background>(dice.integer(0, static_cast<int>(Background::Dark)));
    options.shadow = dice.chance(0.6) ? dice.real(0.1, 0.6) : 0;
    options.glare = dice.chance(0.2) ? dice.real(0.1, 0.35) : 0;
    options.motionBlur = dice.chance(0.4) ? dice.real(0.5, 3) : 0;
    options.focusBlur = dice.chance(0.6) ? dice.real(0.3, 1.1) : 0;
    options.noise = dice.real(1, 5);
    options.exposure = dice.real(-0.55, 0.12);
    if (subject == Subject::Selfie) {
        // An upright frame is narrower than a face of three quarters of its height: ear to ear must fit, at an angle.
        constexpr double broadest = 1.08; // width over height of a face
        const double shape = static_cast<double>(size.width()) / std::max(1, size.height());
        options.fill = dice.real(0.35, std::clamp(0.95 * shape / broadest, 0.36, 0.75));
        options.rollDegrees = dice.real(-5, 5);
        const double free = std::max(0.0, size.width() - broadest * options.fill * size.height()) / 2;
        const double aside = std::min(free, 0.06 * size.width());
        options.shift = { dice.real(-aside, aside), dice.real(-0.04, 0.04) * size.height() };
        return options;
    }
    constexpr int attempts = 400;
    for (int i = 0; i < attempts; ++i) {
        drawPose(options, dice);
        const QPolygonF corners = cornersOf(options);
        const double aspect = aspectOf(corners);
        if (aspect >= smallestAspect && aspect <= largestAspect && isWhole(corners, size))
            return options;
    }
    // A picture so flat that no tilted card fits: straight on, and small enough.
    options.rollDegrees = options.pitchDegrees = options.yawDegrees = 0;
    options.shift = {};
    options.fill = std::min(0.9, 0.9 * size.height() * 1.5857 / std::max(1, size.width()));
    return options;
}

SceneOptions shaken(const SceneOptions& options, double seconds)
{
    Dice dice(options.seed, 0x5a4e);
    // A hand trembles slowly and widely, and quickly and little; no two periods have a common multiple in reach.
    const auto sway = [&](double slow, double quick) {
        const double turn = 2 * std::numbers::pi;
        const double a = dice.unit() * turn;
        const double b = dice.unit() * turn;
        const double c = dice.unit() * turn;
        const double pace = dice.real(0.9, 1.1);
        return slow
            * (0.6 * std::sin(turn * 0.31 * pace * seconds + a) + 0.4 * std::sin(turn * 0.73 * pace * seconds + b))
            + quick * std::sin(turn * 2.9 * pace * seconds + c);
    };
    SceneOptions result = options;
    const double width = frameOf(options).width();
    result.shift += QPointF(sway(0.006 * width, 0.0010 * width), sway(0.006 * width, 0.0010 * width));
    result.fill *= 1 + sway(0.004, 0.0004);
    result.rollDegrees += sway(0.5, 0.06);
    result.pitchDegrees += sway(0.7, 0.05);
    result.yawDegrees += sway(0.7, 0.05);
    result.exposure += sway(0.03, 0.004);
    result.motionBlur = std::max(0.0, options.motionBlur * (1 + sway(0.5, 0.1)));
    return result;
}

} // namespace kelvara::specimen
