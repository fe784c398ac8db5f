#pragma once

#include "Platform/Foundation/Export.h"
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
inline constexpr auto kCIInputEVKey = "inputEV";
inline constexpr auto kCIInputScaleKey = "inputScale";
inline constexpr auto kCIInputAspectRatioKey = "inputAspectRatio";

// What attributes say of a filter and, in a dictionary of its own, of each input.
inline constexpr auto kCIAttributeFilterDisplayName = "CIAttributeFilterDisplayName";
inline constexpr auto kCIAttributeFilterCategories = "CIAttributeFilterCategories";
inline constexpr auto kCIAttributeIdentity = "CIAttributeIdentity";
inline constexpr auto kCIAttributeClass = "CIAttributeClass";
inline constexpr auto kCIAttributeDefault = "CIAttributeDefault";
inline constexpr auto kCIAttributeDisplayName = "CIAttributeDisplayName";
inline constexpr auto kCIAttributeMin = "CIAttributeMin";
inline constexpr auto kCIAttributeSliderMin = "CIAttributeSliderMin";
inline constexpr auto kCIAttributeSliderMax = "CIAttributeSliderMax";
inline constexpr auto kCIAttributeType = "CIAttributeType";
inline constexpr auto kCIAttributeTypeImage = "CIAttributeTypeImage";
inline constexpr auto kCIAttributeTypeScalar = "CIAttributeTypeScalar";

class CIFilterConstructor;

/// A filter: named inputs, one output. Built-in: "CIPerspectiveCorrection" ("inputTopLeft", "inputTopRight",
/// "inputBottomLeft", "inputBottomRight": `QPointF`, origin bottom-left), "CIAreaAverage" ("inputExtent": `QRectF`),
/// "CIColorControls" ("inputSaturation" 1, "inputContrast" 1, "inputBrightness" 0), "CIExposureAdjust" ("inputEV" 0:
/// stops), "CILanczosScaleTransform" ("inputScale" 1, "inputAspectRatio" 1: how much more it scales across). Others are
/// registered. One thread at a time.
class KELVARA_EXPORT CIFilter
{
public:
    virtual ~CIFilter() = default;

    /// Sets an input by its key, the image ("inputImage", a `CIImage`) too; an unknown key is ignored.
    virtual void setValue(const QVariant& value, const QString& key) = 0;
    void setInputImage(std::optional<CIImage> image) { inputImage = std::move(image); }

    /// The result; absent when an input that must be there is missing or makes no sense.
    [[nodiscard]] virtual std::optional<CIImage> outputImage() const = 0;

    /// The filter's description: its display name and, for each input, what it takes. Empty when it has none.
    [[nodiscard]] virtual QVariantMap attributes() const { return {}; }

    /// A new filter of that name; null when no such filter is known. Any thread.
    [[nodiscard]] static std::unique_ptr<CIFilter> filter(const QString& name);
    [[nodiscard]] static std::unique_ptr<CIFilter> filter(const QString& name, const QVariantMap& parameters);

    using Constructor = std::function<std::unique_ptr<CIFilter>(const QString& name)>;
    /// Makes a filter known under a name, with attributes that describe it; registering again replaces. Any thread.
    static void registerFilterName(const QString& name, Constructor constructor, QVariantMap classAttributes);
    static void registerFilterName(
        const QString& name, std::shared_ptr<const CIFilterConstructor> constructor, QVariantMap classAttributes);
    /// The attributes given at registration; empty for an unknown name. Any thread.
    [[nodiscard]] static QVariantMap classAttributes(const QString& name);

protected:
    /// What every filter does with a key first: true when it was the image's. Anything but an image takes it away.
    bool takesImage(const QVariant& value, const QString& key);

    std::optional<CIImage> inputImage;
};

} // namespace kelvara
