#pragma once

#include <QImage>

#include <opencv2/core.hpp>

namespace kelvara::specimen {

/// A view of a 32-bit image's own pixels (blue, green, red, alpha): writing to it writes to the image.
[[nodiscard]] inline cv::Mat pixelsOf(QImage& image)
{
    return { image.height(), image.width(), CV_8UC4, image.bits(), static_cast<std::size_t>(image.bytesPerLine()) };
}

/// The same for reading only.
[[nodiscard]] inline cv::Mat pixelsOf(const QImage& image)
{
    return { image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
        static_cast<std::size_t>(image.bytesPerLine()) };
}

/// A deep copy as an image.
[[nodiscard]] inline QImage imageOf(const cv::Mat& bgra)
{
    QImage image(bgra.cols, bgra.rows, QImage::Format_ARGB32_Premultiplied);
    bgra.copyTo(pixelsOf(image));
    return image;
}

} // namespace kelvara::specimen
