#pragma once

#include <QImage>

#include <optional>

namespace kelvara {

/// How bright a band is decides what it is multiplied by and where black ends.
struct MrzExposure
{
    double threshold = 0; ///< Luma in linear light, 0 to 1.
    double stops = 0; ///< EV.

    /// `luminance`: the band's average, 0 to 1.
    [[nodiscard]] static MrzExposure of(double luminance);
};

/// A band of MRZ lines made ready for reading: exposed by its own brightness, twice as large, every pixel black or
/// white (`Format_ARGB32_Premultiplied`). Rendered in one pass without intermediate bitmaps through
/// `CIContext::shared()`: "videoQueue", or one thread at a time. Absent for a null image, one too large to be doubled,
/// or when `FilterVendor::registerFilters` has not been called.
[[nodiscard]] std::optional<QImage> preprocessImage(const QImage& image);

} // namespace kelvara
