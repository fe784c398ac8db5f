#pragma once

#include <QImage>

#include <opencv2/core.hpp>

namespace kelvara::ocr {

/// Internal: needs OpenCV. Where an image is dark: 255 in a CV_8U matrix of its size, 0 elsewhere. Images of black and
/// white split in the middle; the rest where their histogram says (Otsu). What is transparent counts as white. Empty
/// for a null image.
[[nodiscard]] cv::Mat inkOf(const QImage& image);

} // namespace kelvara::ocr
