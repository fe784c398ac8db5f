#include "Kelvara/LuminanceThresholdFilter.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CIColorKernel.h"

#include <array>
#include <cxxabi.h>
#include <typeinfo>

namespace kelvara {

namespace {

constexpr auto kThresholdKey = "inputThreshold";

const CIColorKernel& thresholdKernel()
{
    static const CIColorKernel kernel = [] {
        auto compiled = CIColorKernel::compile(
            QStringLiteral("    kernel vec4 thresholdFilter(__sample pixel, float threshold) {\n"
                           "    float luma = dot(pixel.rgb, vec3(0.2126, 0.7152, 0.0722));\n"
                           "    return (luma > threshold) ? vec4(1) : vec4(0, 0, 0, 1);\n"
                           "    }"));
        if (!compiled)
            fatalError("The threshold kernel does not compile.");
        return *std::move(compiled);
    }();
    return kernel;
}

/// A class's name without its namespace.
QString nameOf(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    const QString whole = QString::fromLatin1(status == 0 ? readable.get() : type.name());
    return whole.section(QStringLiteral("::"), -1);
}

} // namespace

void LuminanceThresholdFilter::setValue(const QVariant& value, const QString& key)
{
    if (takesImage(value, key))
        return;
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (isNumber && key == QLatin1String(kThresholdKey))
        inputThreshold = number;
}

std::optional<CIImage> LuminanceThresholdFilter::outputImage() const
{
    if (!inputImage)
        return std::nullopt;
    const std::array<CIColorKernel::Argument, 2> arguments { *inputImage, inputThreshold };
    return thresholdKernel().apply(inputImage->extent(), arguments);
}

QVariantMap LuminanceThresholdFilter::attributes() const
{
    const auto text = [](const char* latin1) { return QString::fromLatin1(latin1); };
    const QVariantMap image { { text(kCIAttributeIdentity), 0 }, { text(kCIAttributeClass), QStringLiteral("CIImage") },
        { text(kCIAttributeDisplayName), QStringLiteral("Image") },
        { text(kCIAttributeType), text(kCIAttributeTypeImage) } };
    const QVariantMap threshold { { text(kCIAttributeIdentity), 0 },
        { text(kCIAttributeClass), QStringLiteral("NSNumber") }, { text(kCIAttributeDefault), 0.5 },
        { text(kCIAttributeDisplayName), QStringLiteral("Threshold") }, { text(kCIAttributeMin), 0 },
        { text(kCIAttributeSliderMin), 0 }, { text(kCIAttributeSliderMax), 1 },
        { text(kCIAttributeType), text(kCIAttributeTypeScalar) } };
    return { { text(kCIAttributeFilterDisplayName), nameOf(typeid(*this)) }, { text(kCIInputImageKey), image },
        { text(kThresholdKey), threshold } };
}

} // namespace kelvara
