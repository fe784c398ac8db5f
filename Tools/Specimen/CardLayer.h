#pragma once

#include "Tools/Specimen/Scene.h"

namespace kelvara::specimen {

/// Lays the printed card into the picture: its shadow on the surface, the card with its edges, and glare on it. False
/// if it cannot be printed.
[[nodiscard]] bool layCard(QImage& picture, const SpecimenData& data, const SceneOptions& options);

} // namespace kelvara::specimen
