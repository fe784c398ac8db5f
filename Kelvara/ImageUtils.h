#pragma once

#include "Platform/Imaging/UIImage.h"
#include "Platform/Vision/VNObservation.h"

#include <QColor>
#include <QPoint>

#include <optional>
#include <span>

namespace kelvara {

/// Bitmap routines, most of them the steps of `preProcess`. Sizes are in points (pixels ÷ the image's scale) and
/// positions have their origin at the top left, unless said otherwise. Drawing an image draws it upright. Any thread.
struct ImageUtils
{
    ImageUtils() = delete;

    /// A grey image of 28 × 28: the image on a ground of its border's mean colour, made twice as wide as it is high and
    /// then enlarged by its height, resized and made grey. Nothing (a null image) of an image of more than 32767
    /// pixels' width or half that height, or whose enlargement has more than 2²⁸ pixels.
    [[nodiscard]] static UIImage preProcess(const UIImage& image);

    /// The image drawn into `targetSize` pixels, at scale 1. A size of no pixels is a fatal error.
    [[nodiscard]] static UIImage resize(const UIImage& image, const QSizeF& targetSize);

    /// The stored bitmap (not turned) in 8-bit grey, as many pixels as the image has whole points. An image without
    /// bitmap content, or of less than one point, or of more than 32-bit numbers hold, is a fatal error.
    [[nodiscard]] static UIImage convertToGrayscale(const UIImage& image);

    /// The image after `adjustColors` with a margin of the given width left and right and of the given height above
    /// and below (negative ones cut off), in the mean colour of the adjusted image's four corner pixels. A result
    /// without pixels is a fatal error.
    [[nodiscard]] static UIImage insertInsets(
        const UIImage& image, double insetWidthDimension, double insetHeightDimension);

    /// The image without colours and with more contrast (saturation 0, contrast 1.45); unchanged when it has no bitmap
    /// content.
    [[nodiscard]] static UIImage adjustColors(const UIImage& image);

    /// The colour of four bytes (red, green, blue, alpha, not multiplied by alpha) of the stored bitmap's data, found
    /// at (width in points × y + x) × 4. An offset beyond the data is a fatal error, as is an image without bitmap
    /// content.
    [[nodiscard]] static QColor getPixelColor(const UIImage& fromImage, const QPoint& pixel);

    /// The mean of each component. The list must not be empty.
    [[nodiscard]] static QColor averageColor(std::span<const QColor> fromColors);

    /// The image over a ground of that colour.
    [[nodiscard]] static UIImage convertTransparent(const UIImage& image, const QColor& color);

    /// The image drawn so that its bitmap is upright; itself when it is so already or has no bitmap content.
    [[nodiscard]] static UIImage fixOrientation(const UIImage& image);

    /// The part of the stored bitmap that the observation's bounding box (normalised, origin bottom-left) covers;
    /// absent when there is none. Points are taken as pixels: the image's scale is not applied. An image without
    /// bitmap content is a fatal error.
    [[nodiscard]] static std::optional<UIImage> crop(const UIImage& image, const VNRectangleObservation& rectangle);
};

} // namespace kelvara
