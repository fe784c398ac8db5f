#pragma once

#include <QImage>

#include <cstdint>

namespace kelvara::specimen {

/// Clothes over the shoulders, in two layers between which the neck stands. Transparent elsewhere.
struct Garment
{
    QImage front;
    QImage behind;
};

/// A jacket over a shirt, or a pullover. The images have `scale` pixels to a pixel of the source portrait.
[[nodiscard]] Garment drawGarment(std::uint32_t seed, QSize size, double scale);

} // namespace kelvara::specimen
