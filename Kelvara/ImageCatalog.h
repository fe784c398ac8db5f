#pragma once

#include "Platform/Imaging/UIImage.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace kelvara {

/// The library's own control images: drawings that are rendered sharp at whatever size and pixel ratio is asked for.
/// Rendered images are kept. Works in any host: the resources are registered on first use, also from a static library.
/// Main thread.
class ImageCatalog
{
public:
    /// The names there are: camera_button_on, camera_button_off, loading_card, flash, flash-off, flip_h, cancel.
    [[nodiscard]] static QStringList names();
    [[nodiscard]] static bool contains(const QString& name);

    /// The size the drawing is meant for, in points; empty for an unknown name.
    [[nodiscard]] static QSizeF naturalSize(const QString& name);

    /// The drawing stretched to exactly these pixels, premultiplied; null for an unknown name or an empty size.
    [[nodiscard]] static QImage render(const QString& name, const QSize& pixels);

    /// The name of the drawing that an image from `getMyImage` shows; empty for any other image.
    [[nodiscard]] static QString nameOf(const QImage& image);
};

/// A control image at its natural size and the given pixels per point (0: those of the sharpest screen); absent for an
/// unknown name. Controls that are given such an image know it again and render it sharp at their own size. Main
/// thread.
[[nodiscard]] std::optional<UIImage> getMyImage(const QString& named, double devicePixelRatio = 0);

} // namespace kelvara
