#include "Kelvara/MrzToneCurve.h"

#include "Kelvara/MrzPreprocessing.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara {

namespace {

constexpr int kRounds = 5; ///< The threshold depends on the brightness that the curve gives the band.

double encoded(double linear)
{
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

std::array<double, 256> sharesOf(const QImage& band)
{
    std::array<double, 256> shares {};
    const double one = 1.0 / (double(band.width()) * band.height());
    for (int y = 0; y < band.height(); ++y) {
        const uchar* row = band.constScanLine(y);
        for (int x = 0; x < band.width(); ++x)
            shares[row[x]] += one;
    }
    return shares;
}

} // namespace

QImage tonedForThreshold(const QImage& band, double cut)
{
    if (band.isNull() || band.format() != QImage::Format_Grayscale8)
        return band;
    const std::array<double, 256> shares = sharesOf(band);
    // A power of the level leaves ink and paper where they are; levels are meant in linear light, as enlarging is done
    // there.
    double power = 1;
    for (int round = 0; round < kRounds; ++round) {
        double mean = 0;
        for (std::size_t i = 0; i < shares.size(); ++i)
            mean += shares[i] * std::pow(double(i) / 255, power);
        const MrzExposure exposure = MrzExposure::of(std::clamp(encoded(mean), 0.0, 1.0));
        const double threshold = std::clamp(exposure.threshold / std::exp2(exposure.stops), 0.05, 0.95);
        power = std::log(threshold) / std::log(cut);
    }
    std::array<uchar, 256> curve {};
    for (std::size_t i = 0; i < curve.size(); ++i)
        curve[i] = static_cast<uchar>(std::lround(255 * encoded(std::pow(double(i) / 255, power))));
    QImage toned = band;
    for (int y = 0; y < toned.height(); ++y) {
        uchar* row = toned.scanLine(y);
        for (int x = 0; x < toned.width(); ++x)
            row[x] = curve[row[x]];
    }
    return toned;
}

} // namespace kelvara
