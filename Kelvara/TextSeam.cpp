#include "Kelvara/TextSeam.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace kelvara {

namespace {

/// Lifts the blurred edge, where half of the neighbourhood is letter at best, to almost opaque.
constexpr double kGain = 3.4;
constexpr int kPasses = 3;

/// Running mean over `2 · reach + 1` values of a line; what lies outside counts as 0.
void blurLine(const float* in, float* out, int count, int stride, int reach)
{
    const float share = 1.0F / static_cast<float>(2 * reach + 1);
    float sum = 0;
    for (int i = 0; i < std::min(reach, count); ++i)
        sum += in[i * stride];
    for (int i = 0; i < count; ++i) {
        if (i + reach < count)
            sum += in[(i + reach) * stride];
        out[i * stride] = sum * share;
        if (i - reach >= 0)
            sum -= in[(i - reach) * stride];
    }
}

/// Close to a Gaussian blur: repeated running means, along the rows and along the columns.
void blur(std::vector<float>& values, const QSize& size, int reach)
{
    std::vector<float> passed(values.size());
    for (int pass = 0; pass < kPasses; ++pass) {
        for (int y = 0; y < size.height(); ++y)
            blurLine(
                &values[std::size_t(y) * size.width()], &passed[std::size_t(y) * size.width()], size.width(), 1, reach);
        for (int x = 0; x < size.width(); ++x)
            blurLine(&passed[x], &values[x], size.height(), size.width(), reach);
    }
}

} // namespace

QColor seamColor(const QColor& letters)
{
    return letters.lightnessF() > 0.5F ? Qt::black : Qt::white;
}

QImage withSeam(const QImage& letters, double radius, const QColor& seam)
{
    const QSize size = letters.size();
    if (size.isEmpty())
        return letters;
    std::vector<float> coverage(std::size_t(size.width()) * size.height());
    for (int y = 0; y < size.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(letters.constScanLine(y));
        std::transform(line, line + size.width(), &coverage[std::size_t(y) * size.width()],
            [](QRgb pixel) { return static_cast<float>(qAlpha(pixel)); });
    }
    blur(coverage, size, std::max(1, static_cast<int>(std::lround(radius * 2 / kPasses))));

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const double alpha = std::min(255.0, kGain * coverage[std::size_t(y) * size.width() + x]) * seam.alphaF();
            line[x] = qPremultiply(qRgba(seam.red(), seam.green(), seam.blue(), static_cast<int>(alpha)));
        }
    }
    QPainter painter(&image);
    painter.drawImage(QRect(QPoint(), size), letters, QRect(QPoint(), size));
    painter.end();
    image.setDevicePixelRatio(letters.devicePixelRatio());
    return image;
}

} // namespace kelvara
