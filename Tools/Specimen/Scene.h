#pragma once

#include "Tools/Specimen/Specimen.h"

#include <QImage>
#include <QPolygonF>
#include <QRectF>
#include <QSize>

#include <cstdint>
#include <optional>

namespace kelvara::specimen {

enum class Background { Desk, Wood, Cloth, TextPage, NearWhite, Keyboard, Dark };
enum class Subject { Front, Back, Nothing, Hand, Phone, Selfie };

/// How one picture is taken. Coordinates are pixels of the picture, origin top-left. Every choice that is left open
/// follows from the seed, so that a picture can be named and repeated, on any machine.
struct SceneOptions
{
    std::uint32_t seed = 1;
    QSize size { 1000, 700 };
    Subject subject = Subject::Front;
    Background background = Background::Desk;
    /// The card's width over `frame`'s width (for a selfie: the face's height over the frame's height).
    double fill = 0.85;
    /// The part of the picture that the cut-out will show; null: the whole picture. The card is centred in it.
    QRectF frame;
    double rollDegrees = 0; ///< in the picture's plane
    double pitchDegrees = 0; ///< about the card's long axis
    double yawDegrees = 0; ///< about its short axis
    QPointF shift; ///< of the card's centre, in pixels
    double shadow = 0; ///< 0 none … 1 strong
    double glare = 0; ///< 0 none … 1 burnt-out spot or stripe over part of the card
    double lowContrast = 0; ///< 0 none … 1 background of nearly the card's own colour
    bool fingers = false; ///< thumb or fingers over an edge
    double motionBlur = 0; ///< length in pixels
    double focusBlur = 0; ///< sigma in pixels
    double noise = 2; ///< sigma in grey levels
    double exposure = 0; ///< stops
};

/// A picture with its truth.
struct Scene
{
    QImage image; ///< `Format_ARGB32_Premultiplied`, opaque.
    std::optional<QPolygonF> corners; ///< The card's four corners (before rounding): TL, TR, BR, BL of the card.
    std::optional<QRectF> face; ///< The portrait's or the person's face (forehead to chin, ear to ear).
};

/// Takes the picture. Any thread.
[[nodiscard]] Scene photograph(const SpecimenData& data, const SceneOptions& options);

/// Options within the ranges of ordinary use (fill 0.60–0.99, tilts within an aspect of 1.3–1.6 long over short, some
/// shadow, noise and blur, any background), all from the seed.
[[nodiscard]] SceneOptions ordinary(std::uint32_t seed, Subject subject, QSize size = { 1000, 700 });

/// A steady hand's shake: the same options moved, turned and exposed a little as at `seconds`. Smooth in time.
[[nodiscard]] SceneOptions shaken(const SceneOptions& options, double seconds);

} // namespace kelvara::specimen
