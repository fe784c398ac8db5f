#pragma once

#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIImage.h"

#include <QImage>

#include <random>

namespace kelvara::pictures {

/// Gradients with noise, like a photograph of no particular thing; always the same for the same size.
inline QImage photo(int width, int height, QImage::Format format = QImage::Format_RGB32, int noise = 12)
{
    QImage image(width, height, QImage::Format_RGB32);
    std::mt19937 random(unsigned(width * 31 + height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto level = [&](int base) { return qBound(0, base + int(random() % unsigned(noise + 1)), 255); };
            image.setPixel(x, y, qRgb(level(20 + x * 200 / width), level(y * 230 / height), level(200 - x % 160)));
        }
    }
    return image.convertToFormat(format);
}

/// The same with every alpha from 0 to 255.
inline QImage translucent(int width, int height, QImage::Format format)
{
    QImage image = photo(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, (image.pixel(x, y) & 0xFFFFFFU) | unsigned((x * 7 + y * 3) % 256) << 24);
    }
    return image.convertToFormat(format);
}

/// All of a filter image; null when it cannot be rendered.
inline QImage render(const CIImage& image)
{
    return CIContext::shared().createCGImage(image, image.extent()).value_or(QImage());
}

/// The largest difference of any channel; 256 for different sizes.
inline int largestDifference(const QImage& one, const QImage& other)
{
    if (one.size() != other.size())
        return 256;
    const QImage first = one.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage second = other.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int i = 0; i < first.width() * 4; ++i)
            largest = std::max(largest, std::abs(first.constScanLine(y)[i] - second.constScanLine(y)[i]));
    }
    return largest;
}

} // namespace kelvara::pictures
