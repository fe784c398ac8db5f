#include "Kelvara/TextSeam.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kelvara {

namespace {

// The seam's profile, in shares of its radius: dark beside the letter, gone at twice the radius.
constexpr double kWidening = 0.6;
constexpr double kSoftness = 0.6;
constexpr double kGain = 1.95;

using Place = std::ptrdiff_t;

/// The largest of `2 · reach + 1` values of a line around each place.
void widenLine(const float* in, float* out, Place count, Place stride, Place reach)
{
    for (Place i = 0; i < count; ++i) {
        float largest = 0;
        for (Place near = std::max<Place>(0, i - reach); near <= std::min(count - 1, i + reach); ++near)
            largest = std::max(largest, in[near * stride]);
        out[i * stride] = largest;
    }
}

/// The mean of `2 · reach + 1` values of a line around each place; what lies outside counts as 0.
void blurLine(const float* in, float* out, Place count, Place stride, Place reach)
{
    const float share = 1.0F / static_cast<float>(2 * reach + 1);
    float sum = 0;
    for (Place i = 0; i < std::min(reach, count); ++i)
        sum += in[i * stride];
    for (Place i = 0; i < count; ++i) {
        if (i + reach < count)
            sum += in[(i + reach) * stride];
        out[i * stride] = sum * share;
        if (i - reach >= 0)
            sum -= in[(i - reach) * stride];
    }
}

using LineFilter = void (*)(const float*, float*, Place, Place, Place);

/// Filters the rows, then the columns.
void filter(std::vector<float>& values, const QSize& size, int reach, LineFilter lineFilter)
{
    std::vector<float> rows(values.size());
    const Place width = size.width();
    for (Place y = 0; y < size.height(); ++y)
        lineFilter(&values[y * width], &rows[y * width], width, 1, reach);
    for (Place x = 0; x < width; ++x)
        lineFilter(&rows[x], &values[x], size.height(), width, reach);
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
    // Widened first, so that corners, dots and hairlines get as much of a seam as straight edges.
    const auto pixels = [radius](double share) { return std::max(1, static_cast<int>(std::lround(radius * share))); };
    filter(coverage, size, pixels(kWidening), widenLine);
    filter(coverage, size, pixels(kSoftness), blurLine);
    filter(coverage, size, pixels(kSoftness), blurLine);

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
