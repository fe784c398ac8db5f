#include "Kelvara/CIImageLuminance.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIFilter.h"

#include <array>

namespace kelvara {

double averageLuminance(const CIImage& image)
{
    const std::optional<CIImage> average
        = image.applyingFilter(QStringLiteral("CIAreaAverage"), { { kCIInputExtentKey, image.extent() } });
    if (!average)
        fatalError("The average of an image could not be formed.");
    std::array<std::uint8_t, 4> pixel {};
    CIContext::shared().renderRGBA8(*average, pixel.data(), pixel.size(), QRect(0, 0, 1, 1));
    // In thousandths, so that white is exactly 1.
    return (213 * pixel[0] + 715 * pixel[1] + 72 * pixel[2]) / 255000.0;
}

} // namespace kelvara
