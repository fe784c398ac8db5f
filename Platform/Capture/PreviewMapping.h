#pragma once

#include "Platform/Capture/AVCaptureTypes.h"

#include <QRectF>
#include <QSizeF>

namespace kelvara {

/// How a preview layer lays a camera's picture into its bounds: all that is needed to convert between the two. An
/// immutable value, any thread.
struct PreviewMapping
{
    QRectF bounds; ///< The layer's frame in view coordinates (origin top-left, points).
    AVLayerVideoGravity gravity = AVLayerVideoGravity::ResizeAspectFill;
    int rotation = 0; ///< Degrees clockwise by which the picture is turned for showing.
    bool mirrored = false; ///< Mirrored about the vertical axis after turning.

    /// Where a picture of that size (as shown, that is after turning) lies in view coordinates: it covers the bounds,
    /// fits into them or equals them, as the gravity says. Null when the bounds or the picture are empty.
    [[nodiscard]] QRectF pictureRect(const QSizeF& shownSize) const;

    /// Converts a rectangle of the layer (view coordinates) into the normalised rectangle of interest in sensor axes:
    /// origin top-left of the unturned, unmirrored sensor picture, 0…1 in both axes. `shownSize` is the picture's size
    /// in pixels as shown, that is after turning. Aspect-fill and aspect-fit are accounted for; the result is not
    /// limited to 0…1. An empty layer, rectangle or picture gives a null rectangle, never NaN.
    [[nodiscard]] QRectF metadataOutputRectOfInterest(const QRectF& layerRect, const QSizeF& shownSize) const;
};

} // namespace kelvara
