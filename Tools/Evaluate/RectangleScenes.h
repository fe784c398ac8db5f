#pragma once

#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Scene.h"

#include <array>
#include <cmath>

namespace kelvara::evaluate {

/// The scenes on which rectangle detectors are measured. Seeds below `gateSeeds` are for tuning; those from there on
/// are for tests and benchmarks only, so that figures stay figures about scenes that the tuning never saw.
enum class RectangleScene {
    Plain, // a card to be found
    Finger,
    Glare,
    LowContrast,
    Desk, // nothing to be found
    Keyboard,
    TextPage,
    Hand,
    Phone,
    Person,
    BeyondLimits, // a card that the limits rule out: tilted too far,
    Small, // too small,
    Cut, // or partly out of the picture
};

inline constexpr std::uint32_t gateSeeds = 5'000'000;

struct RectangleSceneClass
{
    RectangleScene scene;
    const char* name;
    bool hasCard; ///< One that must be found.
    bool isEmpty; ///< No card at all.
};

inline constexpr std::array<RectangleSceneClass, 13> rectangleScenes { {
    { RectangleScene::Plain, "plain", true, false },
    { RectangleScene::Finger, "finger", true, false },
    { RectangleScene::Glare, "glare", true, false },
    { RectangleScene::LowContrast, "low contrast", true, false },
    { RectangleScene::Desk, "desk", false, true },
    { RectangleScene::Keyboard, "keyboard", false, true },
    { RectangleScene::TextPage, "text page", false, true },
    { RectangleScene::Hand, "hand", false, true },
    { RectangleScene::Phone, "phone", false, true },
    { RectangleScene::Person, "person", false, true },
    { RectangleScene::BeyondLimits, "beyond limits", false, false },
    { RectangleScene::Small, "small card", false, false },
    { RectangleScene::Cut, "cut card", false, false },
} };

/// The limits with which the card step searches.
inline constexpr RectangleLimits cardLimits { 1.3F, 1.6F, 0.5F, 1 };

/// The options of one scene of a class.
[[nodiscard]] inline specimen::SceneOptions rectangleSceneOptions(
    RectangleScene scene, std::uint32_t seed, QSize size = { 1000, 700 })
{
    using namespace specimen;
    Dice dice(seed, 0x9ec7);
    const Subject card = dice.chance(0.5) ? Subject::Front : Subject::Back;
    const auto sign = [&] { return dice.chance(0.5) ? 1.0 : -1.0; };
    const auto of = [&](Subject subject) { return ordinary(seed, subject, size); };
    SceneOptions options = of(card);
    switch (scene) {
    case RectangleScene::Plain:
        options.glare = 0;
        break;
    case RectangleScene::Finger:
        options.glare = 0;
        options.fingers = true;
        break;
    case RectangleScene::Glare:
        options.glare = dice.real(0.5, 1);
        break;
    case RectangleScene::LowContrast:
        options.lowContrast = dice.real(0.6, 1);
        break;
    case RectangleScene::Desk: {
        constexpr std::array surfaces { Background::Desk, Background::Wood, Background::Cloth, Background::NearWhite,
            Background::Dark };
        options = of(Subject::Nothing);
        options.background = dice.pick<Background>(surfaces);
        break;
    }
    case RectangleScene::Keyboard:
        options = of(Subject::Nothing);
        options.background = Background::Keyboard;
        break;
    case RectangleScene::TextPage:
        options = of(Subject::Nothing);
        options.background = Background::TextPage;
        break;
    case RectangleScene::Hand:
        options = of(Subject::Hand);
        break;
    case RectangleScene::Phone:
        options = of(Subject::Phone);
        break;
    case RectangleScene::Person:
        options = of(Subject::Selfie);
        break;
    case RectangleScene::BeyondLimits:
        options.shift = {};
        do {
            const bool aboutLongAxis = dice.chance(0.5);
            options.fill = dice.real(0.6, 0.9);
            options.rollDegrees = dice.real(-5, 5);
            options.pitchDegrees = aboutLongAxis ? sign() * dice.real(16, 45) : dice.real(-5, 5);
            options.yawDegrees = aboutLongAxis ? dice.real(-5, 5) : sign() * dice.real(36, 55);
        } while (aspectOf(cornersOf(options)) > 1.26 && aspectOf(cornersOf(options)) < 1.65);
        break;
    case RectangleScene::Small:
        options.fill = dice.real(0.2, 0.5);
        options.shift = { dice.real(-0.2, 0.2) * size.width(), dice.real(-0.2, 0.2) * size.height() };
        break;
    case RectangleScene::Cut:
        options.fill = dice.real(0.8, 1.25);
        options.shift = { sign() * dice.real(0.15, 0.4) * size.width(), dice.real(-0.3, 0.3) * size.height() };
        options.fingers = dice.chance(0.3);
        break;
    }
    return options;
}

} // namespace kelvara::evaluate
