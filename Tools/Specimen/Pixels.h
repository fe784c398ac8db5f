#pragma once

#include <QImage>
#include <QTransform>

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

/// The same map as OpenCV's matrix, which stands before column vectors.
[[nodiscard]] inline cv::Matx33d matrixOf(const QTransform& t)
{
    return { t.m11(), t.m21(), t.m31(), t.m12(), t.m22(), t.m32(), t.m13(), t.m23(), t.m33() };
}

/// A view of a matrix as an image; the matrix must outlive it.
[[nodiscard]] inline QImage viewOf(cv::Mat& bgra)
{
    return { bgra.data, bgra.cols, bgra.rows, static_cast<qsizetype>(bgra.step), QImage::Format_ARGB32_Premultiplied };
}

} // namespace kelvara::specimen
