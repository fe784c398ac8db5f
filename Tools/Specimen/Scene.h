#pragma once

#include "Platform/Foundation/Export.h"
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

/// Takes the picture. Null image if the size is empty or, for a card, if nothing can be printed (`printerProblem`). Any
/// thread, while a QGuiApplication lives. Prints, persons and surfaces are kept: the next picture of the same scene, as
/// of a film made with `shaken`, costs a tenth of the first. Surface and card tilt and move together, as under a moving
/// camera; noise changes with the pose.
[[nodiscard]] KELVARA_EXPORT Scene photograph(const SpecimenData& data, const SceneOptions& options);

/// Gives back what is kept for the next picture: a hundred megabytes after three of 1080 × 1920. Any thread.
KELVARA_EXPORT void forgetPictures();

/// Options within the ranges of ordinary use, all from the seed: fill 0.60–0.99, all corners in the picture, tilts
/// within an aspect of 1.35–1.60 (means of opposite sides, long over short), roll within ±7°, some shadow, noise and
/// blur, any background. A selfie's face is 0.35–0.75 of the picture's height, but no wider than the picture.
[[nodiscard]] KELVARA_EXPORT SceneOptions ordinary(std::uint32_t seed, Subject subject, QSize size = { 1000, 700 });

/// A steady hand's shake: the same options moved, turned and exposed a little as at `seconds`. Smooth in time: between
/// two frames of a thirtieth of a second a corner moves by less than a hundredth of the frame's width. A card that
/// nearly fills the picture may be moved over its border.
[[nodiscard]] KELVARA_EXPORT SceneOptions shaken(const SceneOptions& options, double seconds);

} // namespace kelvara::specimen
