#include "Kelvara/MrzPreprocessing.h"

#include "Kelvara/CIImageLuminance.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIFilter.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

// Of the result, as `CIContext` has them.
constexpr qint64 kLongestSide = 32767;
constexpr qint64 kMostPixels = qint64 { 1 } << 28;

} // namespace

MrzExposure MrzExposure::of(double luminance)
{
    MrzExposure exposure { .threshold = 1.0 - std::pow(1.0 - luminance, 0.2), .stops = 0.5 };
    if (luminance > 0.8)
        exposure.stops = 0.5 - (luminance - 0.5) * 2.0;
    if (luminance < 0.35)
        exposure.stops += std::exp2(0.5 - luminance);
    return exposure;
}

std::optional<QImage> preprocessImage(const QImage& image)
{
    // What cannot be doubled is not even looked at.
    if (image.isNull() || 2 * std::max(qint64 { image.width() }, qint64 { image.height() }) > kLongestSide
        || 4 * qint64 { image.width() } * image.height() > kMostPixels)
        return std::nullopt;
    const CIImage band(image);
    const MrzExposure exposure = MrzExposure::of(averageLuminance(band));
    auto result
        = band.applyingFilter(QStringLiteral("CIExposureAdjust"), { { QLatin1String(kCIInputEVKey), exposure.stops } });
    if (result)
        result = result->applyingFilter(
            QStringLiteral("CILanczosScaleTransform"), { { QLatin1String(kCIInputScaleKey), 2 } });
    if (result)
        result = result->applyingFilter(
            QStringLiteral("LuminanceThresholdFilter"), { { QStringLiteral("inputThreshold"), exposure.threshold } });
    return result ? CIContext::shared().createCGImage(*result, result->extent()) : std::nullopt;
}

} // namespace kelvara
