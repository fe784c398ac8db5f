#pragma once

#include "Platform/Foundation/Export.h"

#include <QImage>
#include <QSizeF>

#include <optional>

namespace kelvara {

/// Which way is up in a bitmap, as photo libraries say it. Raw values are the platform's.
enum class UIImageOrientation {
    Up = 0,
    Down = 1,
    Left = 2,
    Right = 3,
    UpMirrored = 4,
    DownMirrored = 5,
    LeftMirrored = 6,
    RightMirrored = 7
};

/// The same as stored in image files (Exif tag 0x0112). Raw values are Exif's.
enum class CGImagePropertyOrientation {
    Up = 1,
    UpMirrored = 2,
    Down = 3,
    DownMirrored = 4,
    LeftMirrored = 5,
    Right = 6,
    RightMirrored = 7,
    Left = 8
};

/// The Exif orientation of the same name. A value outside the enumeration is a fatal error.
[[nodiscard]] KELVARA_EXPORT CGImagePropertyOrientation imagePropertyOrientation(UIImageOrientation orientation);
/// The inverse. A value outside the enumeration is a fatal error.
[[nodiscard]] KELVARA_EXPORT UIImageOrientation imageOrientation(CGImagePropertyOrientation orientation);

/// A picture: a bitmap, which way is up in it, and how many pixels make a point. A value with shared pixels, usable
/// wherever a `QImage` is. Any thread.
class KELVARA_EXPORT UIImage
{
public:
    /// An image without bitmap content.
    UIImage() = default;
    UIImage(QImage bitmap, double scale = 1.0, UIImageOrientation orientation = UIImageOrientation::Up);

    /// The bitmap as stored, not turned; absent when there is none.
    [[nodiscard]] std::optional<QImage> cgImage() const;
    [[nodiscard]] UIImageOrientation imageOrientation() const { return m_orientation; }
    /// Pixels per point; never 0.
    [[nodiscard]] double scale() const { return m_scale; }
    /// Size in points, upright.
    [[nodiscard]] QSizeF size() const;
    [[nodiscard]] bool isNull() const { return m_bitmap.isNull(); }

    /// The upright bitmap; the stored one (no pixel copied) when the orientation is up. Null without bitmap content.
    [[nodiscard]] QImage toQImage() const;
    operator QImage() const { return toQImage(); }

private:
    QImage m_bitmap;
    UIImageOrientation m_orientation = UIImageOrientation::Up;
    double m_scale = 1.0;
};

/// PNG of the upright image; absent when the image has no bitmap content or cannot be encoded. Lossless; an opaque
/// image is written without an alpha channel. Any thread.
[[nodiscard]] KELVARA_EXPORT std::optional<QByteArray> UIImagePNGRepresentation(const UIImage& image);

/// JPEG of the upright image at a quality of 0 to 1 (values outside are limited); absent as above. Any thread.
[[nodiscard]] KELVARA_EXPORT std::optional<QByteArray> UIImageJPEGRepresentation(const UIImage& image, double quality);

} // namespace kelvara
