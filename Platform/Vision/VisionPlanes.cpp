#include "Platform/Vision/VisionPlanes.h"

#include "Platform/Foundation/FatalError.h"

#include <opencv2/imgproc.hpp>

namespace kelvara {

namespace {

QImage inBgraOrder(const QImage& image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return image;
    default:
        return image.convertToFormat(QImage::Format_RGB32);
    }
}

cv::Mat halved(const cv::Mat& above)
{
    // Cut to even sides first: an exact factor of two keeps the pixel grid and takes the fast path.
    const cv::Rect even(0, 0, above.cols & ~1, above.rows & ~1);
    cv::Mat half;
    if (!even.empty())
        cv::resize(above(even), half, cv::Size(even.width / 2, even.height / 2), 0, 0, cv::INTER_AREA);
    return half;
}

} // namespace

VisionImage::Planes::Planes(QImage upright) : bitmap(std::move(upright)), m_bytes(inBgraOrder(bitmap)) { }

const cv::Mat& VisionImage::Planes::bgra(int level)
{
    precondition(level >= 0 && level < levels, "A vision image has four levels.");
    Plane& plane = m_bgra[static_cast<std::size_t>(level)];
    std::call_once(plane.once, [&] {
        if (level > 0)
            plane.pixels = halved(bgra(level - 1));
        else if (!m_bytes.isNull())
            // OpenCV has no read-only matrix; every user of the planes gets them const.
            plane.pixels = cv::Mat(m_bytes.height(), m_bytes.width(), CV_8UC4, const_cast<uchar*>(m_bytes.constBits()),
                static_cast<std::size_t>(m_bytes.bytesPerLine()));
    });
    return plane.pixels;
}

const cv::Mat& VisionImage::Planes::luma(int level)
{
    const cv::Mat& color = bgra(level);
    Plane& plane = m_luma[static_cast<std::size_t>(level)];
    std::call_once(plane.once, [&] {
        if (!color.empty())
            cv::cvtColor(color, plane.pixels, cv::COLOR_BGRA2GRAY);
    });
    return plane.pixels;
}

} // namespace kelvara
