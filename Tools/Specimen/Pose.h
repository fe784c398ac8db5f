#pragma once

#include "Tools/Specimen/Scene.h"

#include <QPolygonF>
#include <QTransform>

namespace kelvara::specimen {

/// The part of the picture that counts as the frame: `options.frame`, or all of it.
[[nodiscard]] QRectF frameOf(const SceneOptions& options);

/// From millimetres on the card's plane (origin at the card's centre, y down) to pixels of the picture.
[[nodiscard]] QTransform poseOf(const SceneOptions& options);

/// The card's corners in the picture: TL, TR, BR, BL.
[[nodiscard]] QPolygonF cornersOf(const SceneOptions& options);

/// Means of opposite sides, long over short as the card lies: 1.586 seen straight on.
[[nodiscard]] double aspectOf(const QPolygonF& corners);

} // namespace kelvara::specimen
