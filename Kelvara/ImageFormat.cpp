#include "Kelvara/ImageFormat.h"

#include <future>
#include <system_error>

namespace kelvara {

namespace {

std::optional<QString> pngBase64(const std::optional<UIImage>& image)
{
    return image ? toBase64(*image, ImageFormat::png()) : std::nullopt;
}

} // namespace

std::optional<QString> toBase64(const UIImage& image, ImageFormat format)
{
    const std::optional<QByteArray> encoded = format.kind() == ImageFormat::Case::jpeg
        ? UIImageJPEGRepresentation(image, format.quality())
        : UIImagePNGRepresentation(image);
    if (!encoded)
        return std::nullopt;
    return QString::fromLatin1(encoded->toBase64());
}

std::pair<std::optional<QString>, std::optional<QString>> pngBase64Pair(
    const std::optional<UIImage>& first, const std::optional<UIImage>& second)
{
    if (!first || !second)
        return { pngBase64(first), pngBase64(second) };
    std::future<std::optional<QString>> other;
    try {
        other = std::async(std::launch::async, [&second] { return pngBase64(second); });
    } catch (const std::system_error&) {
        // No thread to be had: one after the other, then.
    }
    std::optional<QString> text = pngBase64(first);
    return { std::move(text), other.valid() ? other.get() : pngBase64(second) };
}

} // namespace kelvara
