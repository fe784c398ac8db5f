#pragma once

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace kelvara::test {

/// Relative luminance as WCAG 2.1 defines it, 0 to 1.
inline double luminance(QRgb color)
{
    static const std::array<double, 256> linear = [] {
        std::array<double, 256> table {};
        for (std::size_t value = 0; value < table.size(); ++value) {
            const double v = static_cast<double>(value) / 255;
            table[value] = v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        }
        return table;
    }();
    return 0.2126 * linear[qRed(color)] + 0.7152 * linear[qGreen(color)] + 0.0722 * linear[qBlue(color)];
}

/// Contrast ratio as WCAG 2.1 defines it, 1 to 21.
inline double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// What was measured along the edges of letters.
struct EdgeContrast
{
    std::size_t places = 0; ///< How many pixels lie beside letters.
    double least = 21; ///< Of the worst pixel.
    double hundredth = 21; ///< The worst that 99 of 100 pixels reach.
    double middle = 21;
};

/// The contrast of letters to what lies within a point beside them, from pixels as they were rendered. `look` has the
/// text on whatever lies behind it; `letters` is the coverage by letters alone, white on black, of the same size. Both
/// sides are taken from `look`: the letters' luminance as the median of the pixels that they cover wholly, what lies
/// beside them pixel by pixel.
inline EdgeContrast edgeContrast(const QImage& look, const QImage& letters, double pixelRatio)
{
    constexpr int kCovered = 250;
    constexpr int kBare = 8;
    constexpr int kLetter = 128;
    std::vector<double> inside;
    std::vector<double> beside;
    const int reach = qRound(pixelRatio);
    for (int y = reach; y < look.height() - reach; ++y) {
        for (int x = reach; x < look.width() - reach; ++x) {
            const int coverage = qGray(letters.pixel(x, y));
            if (coverage >= kCovered)
                inside.push_back(luminance(look.pixel(x, y)));
            if (coverage > kBare)
                continue;
            bool isBeside = false;
            for (int dy = -reach; dy <= reach && !isBeside; ++dy) {
                for (int dx = -reach; dx <= reach && !isBeside; ++dx)
                    isBeside = qGray(letters.pixel(x + dx, y + dy)) > kLetter;
            }
            if (isBeside)
                beside.push_back(luminance(look.pixel(x, y)));
        }
    }
    EdgeContrast measured;
    measured.places = inside.empty() ? 0 : beside.size();
    if (measured.places == 0)
        return measured;
    std::ranges::nth_element(inside, inside.begin() + static_cast<std::ptrdiff_t>(inside.size() / 2));
    const double letter = inside[inside.size() / 2];
    std::vector<double> contrasts;
    std::ranges::transform(
        beside, std::back_inserter(contrasts), [letter](double ground) { return contrast(letter, ground); });
    std::ranges::sort(contrasts);
    measured.least = contrasts.front();
    measured.hundredth = contrasts[contrasts.size() / 100];
    measured.middle = contrasts[contrasts.size() / 2];
    return measured;
}

} // namespace kelvara::test
