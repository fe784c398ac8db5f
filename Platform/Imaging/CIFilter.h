#pragma once

#include "Platform/Imaging/CIImage.h"

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace kelvara {

inline constexpr auto kCIInputImageKey = "inputImage";
inline constexpr auto kCIInputExtentKey = "inputExtent";
inline constexpr auto kCIInputSaturationKey = "inputSaturation";
inline constexpr auto kCIInputContrastKey = "inputContrast";
inline constexpr auto kCIInputBrightnessKey = "inputBrightness";

/// A filter: named inputs, one output. Built-in: "CIPerspectiveCorrection" ("inputTopLeft", "inputTopRight",
/// "inputBottomLeft", "inputBottomRight": `QPointF`, origin bottom-left), "CIAreaAverage" ("inputExtent": `QRectF`),
/// "CIColorControls" ("inputSaturation" 1, "inputContrast" 1, "inputBrightness" 0). Others are registered.
/// One thread at a time.
class CIFilter
{
public:
    virtual ~CIFilter() = default;

    /// Sets an input by its key; an unknown key is ignored.
    virtual void setValue(const QVariant& value, const QString& key) = 0;
    void setInputImage(std::optional<CIImage> image) { inputImage = std::move(image); }

    /// The result; absent when an input that must be there is missing or makes no sense.
    [[nodiscard]] virtual std::optional<CIImage> outputImage() const = 0;

    /// A new filter of that name; null when no such filter is known. Any thread.
    [[nodiscard]] static std::unique_ptr<CIFilter> filter(const QString& name);
    [[nodiscard]] static std::unique_ptr<CIFilter> filter(const QString& name, const QVariantMap& parameters);

    using Constructor = std::function<std::unique_ptr<CIFilter>(const QString& name)>;
    /// Makes a filter known under a name, with attributes that describe it; registering again replaces. Any thread.
    static void registerFilterName(const QString& name, Constructor constructor, QVariantMap classAttributes);
    /// The attributes given at registration; empty for an unknown name. Any thread.
    [[nodiscard]] static QVariantMap classAttributes(const QString& name);

protected:
    std::optional<CIImage> inputImage;
};

} // namespace kelvara
