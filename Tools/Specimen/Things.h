#pragma once

#include "Tools/Specimen/Scene.h"

#include <QImage>

namespace kelvara::specimen {

/// Fingers that hold the card by one of its edges and hide 8–15 % of it.
void paintFingers(QImage& picture, const SceneOptions& options);

/// An open hand over the surface.
void paintHand(QImage& picture, const SceneOptions& options);

/// A phone lying there: a dark rounded slab about twice as long as wide, its screen on or off.
void paintPhone(QImage& picture, const SceneOptions& options);

} // namespace kelvara::specimen
