#pragma once

#include "Platform/Imaging/CIFilter.h"

namespace kelvara {

/// Turns every pixel whose luma (Rec. 709 weights, in linear light) is above the threshold opaque white and every other
/// one, the equal case included, opaque black; alpha is discarded. Registered under its name by `FilterVendor`.
class LuminanceThresholdFilter : public CIFilter
{
public:
    using CIFilter::inputImage; ///< Absent at first.
    double inputThreshold = 0.5; ///< 0 to 1.

    /// Key "inputThreshold": a number.
    void setValue(const QVariant& value, const QString& key) override;
    /// Over the input image's extent; absent without one.
    [[nodiscard]] std::optional<CIImage> outputImage() const override;
    [[nodiscard]] QVariantMap attributes() const override;
};

} // namespace kelvara
