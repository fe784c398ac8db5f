#include "Platform/Imaging/BuiltInFilters.h"

#include "Platform/Imaging/AreaAverageNode.h"
#include "Platform/Imaging/ColorNode.h"
#include "Platform/Imaging/LanczosNode.h"
#include "Platform/Imaging/PerspectiveNode.h"
#include "Platform/Imaging/PixelRect.h"

#include <cmath>

namespace kelvara::imaging {

namespace {

/// A filter whose inputs are kept as they come.
class KeyedFilter : public CIFilter
{
public:
    void setValue(const QVariant& value, const QString& key) override
    {
        if (!takesImage(value, key))
            m_values.insert(key, value);
    }

protected:
    /// The input as a T; absent when it is missing or something else.
    template<typename T> [[nodiscard]] std::optional<T> value(const char* key) const
    {
        QVariant found = m_values.value(QLatin1String(key));
        return found.convert(QMetaType::fromType<T>()) ? std::optional(found.value<T>()) : std::nullopt;
    }

private:
    QVariantMap m_values;
};

class PerspectiveCorrection final : public KeyedFilter
{
public:
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        const auto topLeft = value<QPointF>("inputTopLeft");
        const auto topRight = value<QPointF>("inputTopRight");
        const auto bottomLeft = value<QPointF>("inputBottomLeft");
        const auto bottomRight = value<QPointF>("inputBottomRight");
        if (!inputImage || !topLeft || !topRight || !bottomLeft || !bottomRight)
            return std::nullopt;
        auto node = PerspectiveNode::make(inputImage->node(), { *topLeft, *topRight, *bottomLeft, *bottomRight });
        return node ? std::optional<CIImage>(std::move(node)) : std::nullopt;
    }
};

class AreaAverage final : public KeyedFilter
{
public:
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        if (!inputImage)
            return std::nullopt;
        const auto area = integralRect(value<QRectF>(kCIInputExtentKey).value_or(inputImage->extent()));
        if (!area)
            return std::nullopt;
        // Every pixel is looked at: of endless images there is no average.
        constexpr qint64 kMostPixels = qint64 { 1 } << 28;
        const QRect covered = *area & inputImage->extent().toAlignedRect();
        if (qint64 { covered.width() } * covered.height() > kMostPixels)
            return std::nullopt;
        return CIImage(std::make_shared<AreaAverageNode>(inputImage->node(), *area));
    }
};

class ColorControls final : public KeyedFilter
{
public:
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        if (!inputImage)
            return std::nullopt;
        const auto saturation = float(value<double>(kCIInputSaturationKey).value_or(1.0));
        const auto contrast = float(value<double>(kCIInputContrastKey).value_or(1.0));
        const auto brightness = float(value<double>(kCIInputBrightnessKey).value_or(0.0));
        return CIImage(std::make_shared<ColorNode>(inputImage->node(), [=](std::span<Pixel> pixels) {
            for (Pixel& pixel : pixels) {
                const float luma = 0.2126F * pixel.r + 0.7152F * pixel.g + 0.0722F * pixel.b;
                // On premultiplied colours a constant weighs as much as the pixel covers.
                const auto adjusted = [&](float color) {
                    const float saturated = luma + saturation * (color - luma) + brightness * pixel.a;
                    return (saturated - 0.5F * pixel.a) * contrast + 0.5F * pixel.a;
                };
                pixel = { adjusted(pixel.r), adjusted(pixel.g), adjusted(pixel.b), pixel.a };
            }
        }));
    }
};

class ExposureAdjust final : public KeyedFilter
{
public:
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        const double stops = value<double>(kCIInputEVKey).value_or(0.0);
        if (!inputImage || !std::isfinite(stops))
            return std::nullopt;
        const auto gain = float(std::exp2(stops));
        return CIImage(std::make_shared<ColorNode>(inputImage->node(), [gain](std::span<Pixel> pixels) {
            for (Pixel& pixel : pixels)
                pixel = { gain * pixel.r, gain * pixel.g, gain * pixel.b, pixel.a };
        }));
    }
};

class LanczosScaleTransform final : public KeyedFilter
{
public:
    [[nodiscard]] std::optional<CIImage> outputImage() const override
    {
        const double scale = value<double>(kCIInputScaleKey).value_or(1.0);
        const double aspectRatio = value<double>(kCIInputAspectRatioKey).value_or(1.0);
        auto node = inputImage ? LanczosNode::make(inputImage->node(), scale * aspectRatio, scale) : nullptr;
        return node ? std::optional<CIImage>(std::move(node)) : std::nullopt;
    }
};

} // namespace

std::unique_ptr<CIFilter> makeBuiltInFilter(const QString& name)
{
    if (name == QLatin1String("CIPerspectiveCorrection"))
        return std::make_unique<PerspectiveCorrection>();
    if (name == QLatin1String("CIAreaAverage"))
        return std::make_unique<AreaAverage>();
    if (name == QLatin1String("CIColorControls"))
        return std::make_unique<ColorControls>();
    if (name == QLatin1String("CIExposureAdjust"))
        return std::make_unique<ExposureAdjust>();
    if (name == QLatin1String("CILanczosScaleTransform"))
        return std::make_unique<LanczosScaleTransform>();
    return nullptr;
}

} // namespace kelvara::imaging
