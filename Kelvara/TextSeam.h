#pragma once

#include <QImage>

class QColor;

namespace kelvara
{

/// Lays a soft seam behind what is drawn in an image, so that it stands out from whatever lies beneath. `letters` is
/// premultiplied; `radius` is about how far the seam reaches, in pixels: it is close to opaque along the edges and
/// fades out within twice the radius. Letters nearer to the image's border than that have their seam cut off.
[[nodiscard]] QImage withSeam(const QImage& letters, double radius, const QColor& seam);

} // namespace kelvara
