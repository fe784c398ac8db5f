#pragma once

#include "Tools/Specimen/Scene.h"

#include <QImage>
#include <QTransform>

#include <memory>

namespace kelvara::specimen {

/// What lies under the card: a surface somewhat larger than the picture, seen straight on.
struct Backdrop
{
    QImage image; ///< Opaque.
    double pixelsPerMm; ///< So that a key or a line of text has its right size beside the card.
};

/// The surface of these options' background and seed. The last few are kept. Any thread. Null image if fonts are
/// missing where the surface bears text.
[[nodiscard]] std::shared_ptr<const Backdrop> backdropFor(const SceneOptions& options);

/// A blurred room behind a person, of the picture's size.
[[nodiscard]] std::shared_ptr<const QImage> roomFor(const SceneOptions& options);

} // namespace kelvara::specimen
