#pragma once

#include <QColor>
#include <QImage>

namespace kelvara {

/// The colour that sets letters of a colour off: black from light ones, white from dark ones.
[[nodiscard]] QColor seamColor(const QColor& letters);

/// Lays a soft seam behind what is drawn in an image, so that it stands out from whatever lies beneath. `letters` is
/// premultiplied; `radius` is about how far the seam reaches, in pixels: it is close to opaque along the edges and
/// fades out within twice the radius. Letters nearer to the image's border than that have their seam cut off.
[[nodiscard]] QImage withSeam(const QImage& letters, double radius, const QColor& seam);

} // namespace kelvara
