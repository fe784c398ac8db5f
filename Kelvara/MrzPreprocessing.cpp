#include "Kelvara/MrzPreprocessing.h"

#include "Kelvara/CIImageLuminance.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIFilter.h"

#include <cmath>

namespace kelvara {

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
    if (image.isNull())
        return std::nullopt;
    const CIImage band(image);
    // The eight-bit average of pure white may leave the sum of its weights a rounding above 1.
    const MrzExposure exposure = MrzExposure::of(std::min(averageLuminance(band), 1.0));
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
