#include "Platform/Mrz/OcrBitmap.h"

#include <opencv2/imgproc.hpp>

namespace kelvara::ocr {

cv::Mat inkOf(const QImage& image)
{
    if (image.isNull())
        return {};
    QImage opaque = image;
    if (image.hasAlphaChannel() && image.format() != QImage::Format_ARGB32_Premultiplied)
        opaque = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    cv::Mat grey;
    if (opaque.format() == QImage::Format_ARGB32_Premultiplied || opaque.format() == QImage::Format_RGB32) {
        const cv::Mat bgra(opaque.height(), opaque.width(), CV_8UC4, const_cast<uchar*>(opaque.constBits()),
            std::size_t(opaque.bytesPerLine()));
        cv::cvtColor(bgra, grey, cv::COLOR_BGRA2GRAY);
        if (opaque.format() == QImage::Format_ARGB32_Premultiplied) {
            cv::Mat alpha;
            cv::extractChannel(bgra, alpha, 3);
            grey += 255 - alpha; // over white
        }
    } else {
        opaque = opaque.convertToFormat(QImage::Format_Grayscale8);
        grey = cv::Mat(opaque.height(), opaque.width(), CV_8U, const_cast<uchar*>(opaque.constBits()),
            std::size_t(opaque.bytesPerLine()))
                   .clone();
    }
    cv::Mat ink;
    double least = 0;
    double most = 0;
    cv::minMaxLoc(grey, &least, &most);
    if (most - least < 32) // nothing stands out
        return cv::Mat::zeros(grey.size(), CV_8U);
    if (least == 0 && most == 255 && cv::countNonZero(grey) == cv::countNonZero(grey == 255))
        cv::threshold(grey, ink, 127, 255, cv::THRESH_BINARY_INV);
    else
        cv::threshold(grey, ink, 0, 255, cv::THRESH_BINARY_INV | cv::THRESH_OTSU);
    return ink;
}

} // namespace kelvara::ocr
