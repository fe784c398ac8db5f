#include "Platform/Imaging/UIImage.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/Orientation.h"

#include <QTransform>

#include <cmath>

namespace kelvara {

CGImagePropertyOrientation imagePropertyOrientation(UIImageOrientation orientation)
{
    switch (orientation) {
    case UIImageOrientation::Up:
        return CGImagePropertyOrientation::Up;
    case UIImageOrientation::UpMirrored:
        return CGImagePropertyOrientation::UpMirrored;
    case UIImageOrientation::Down:
        return CGImagePropertyOrientation::Down;
    case UIImageOrientation::DownMirrored:
        return CGImagePropertyOrientation::DownMirrored;
    case UIImageOrientation::LeftMirrored:
        return CGImagePropertyOrientation::LeftMirrored;
    case UIImageOrientation::Right:
        return CGImagePropertyOrientation::Right;
    case UIImageOrientation::RightMirrored:
        return CGImagePropertyOrientation::RightMirrored;
    case UIImageOrientation::Left:
        return CGImagePropertyOrientation::Left;
    }
    fatalError("An image orientation has an unknown value.");
}

UIImageOrientation imageOrientation(CGImagePropertyOrientation orientation)
{
    switch (orientation) {
    case CGImagePropertyOrientation::Up:
        return UIImageOrientation::Up;
    case CGImagePropertyOrientation::UpMirrored:
        return UIImageOrientation::UpMirrored;
    case CGImagePropertyOrientation::Down:
        return UIImageOrientation::Down;
    case CGImagePropertyOrientation::DownMirrored:
        return UIImageOrientation::DownMirrored;
    case CGImagePropertyOrientation::LeftMirrored:
        return UIImageOrientation::LeftMirrored;
    case CGImagePropertyOrientation::Right:
        return UIImageOrientation::Right;
    case CGImagePropertyOrientation::RightMirrored:
        return UIImageOrientation::RightMirrored;
    case CGImagePropertyOrientation::Left:
        return UIImageOrientation::Left;
    }
    fatalError("An image property orientation has an unknown value.");
}

imaging::OrientationSteps imaging::stepsUpright(CGImagePropertyOrientation orientation)
{
    switch (orientation) {
    case CGImagePropertyOrientation::Up:
        return {};
    case CGImagePropertyOrientation::UpMirrored:
        return { .flipX = true };
    case CGImagePropertyOrientation::Down:
        return { .flipX = true, .flipY = true };
    case CGImagePropertyOrientation::DownMirrored:
        return { .flipY = true };
    case CGImagePropertyOrientation::LeftMirrored:
        return { .transpose = true };
    case CGImagePropertyOrientation::Right:
        return { .flipY = true, .transpose = true };
    case CGImagePropertyOrientation::RightMirrored:
        return { .flipX = true, .flipY = true, .transpose = true };
    case CGImagePropertyOrientation::Left:
        return { .flipX = true, .transpose = true };
    }
    fatalError("An image property orientation has an unknown value.");
}

UIImage::UIImage(QImage bitmap, double scale, UIImageOrientation orientation)
    : m_bitmap(std::move(bitmap)), m_orientation(orientation), m_scale(std::isfinite(scale) && scale > 0 ? scale : 1.0)
{ }

std::optional<QImage> UIImage::cgImage() const
{
    return m_bitmap.isNull() ? std::nullopt : std::optional(m_bitmap);
}

QSizeF UIImage::size() const
{
    const bool turned = imaging::stepsUpright(imagePropertyOrientation(m_orientation)).transpose;
    return QSizeF(turned ? m_bitmap.size().transposed() : m_bitmap.size()) / m_scale;
}

QImage UIImage::toQImage() const
{
    const auto [flipX, flipY, transpose] = imaging::stepsUpright(imagePropertyOrientation(m_orientation));
    if (m_bitmap.isNull())
        return m_bitmap;
    if (transpose) // a quarter turn is a swap of rows and columns after a vertical flip
        return m_bitmap.mirrored(flipX, !flipY).transformed(QTransform().rotate(90));
    return flipX || flipY ? m_bitmap.mirrored(flipX, flipY) : m_bitmap;
}

} // namespace kelvara
