#include "Kelvara/ImageFormat.h"
#include "Platform/Imaging/CGImage.h"
#include "Tests/Imaging/Pictures.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// The bytes that a text stands for; absent when it is anything but one line of padded base64.
std::optional<QByteArray> strictlyDecoded(const QString& text)
{
    const auto bytes = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return bytes && text.size() % 4 == 0 ? std::optional(*bytes) : std::nullopt;
}

TEST(ImageFormat, TextsAreTheEncodedImages)
{
    const QImage bitmap = pictures::photo(61, 40);
    for (int raw = 0; raw < 8; raw += 3) {
        const UIImage image(bitmap, 2.0, UIImageOrientation(raw));
        for (const ImageFormat format : { ImageFormat::png(), ImageFormat::jpeg(0.9), ImageFormat::jpeg(0.1) }) {
            const auto text = toBase64(image, format);
            ASSERT_TRUE(text);
            const auto bytes = strictlyDecoded(*text);
            ASSERT_TRUE(bytes) << raw;
            const bool png = format.kind() == ImageFormat::Case::png;
            EXPECT_EQ(
                bytes, png ? UIImagePNGRepresentation(image) : UIImageJPEGRepresentation(image, format.quality()));
            const QImage shown = QImage::fromData(*bytes, png ? "png" : "jpeg");
            EXPECT_EQ(shown.size(), image.toQImage().size()) << raw;
            EXPECT_TRUE(!png || pictures::largestDifference(shown, image.toQImage()) == 0) << raw;
        }
    }
    EXPECT_LT(toBase64(bitmap, ImageFormat::jpeg(0.1))->size(), toBase64(bitmap, ImageFormat::jpeg(0.9))->size());
    EXPECT_FALSE(toBase64(UIImage(), ImageFormat::png()) || toBase64(UIImage(), ImageFormat::jpeg(1)));
}

TEST(ImageFormat, APairIsTwoTextsInOrder)
{
    const QImage bitmap = pictures::photo(200, 120, QImage::Format_ARGB32_Premultiplied);
    const std::optional<UIImage> images[] = { std::nullopt, UIImage(), UIImage(bitmap),
        UIImage(cropping(bitmap, QRectF(20, 30, 90, 61)).value(), 1.0, UIImageOrientation::Right) };
    const auto alone = [](const std::optional<UIImage>& image) {
        return image ? toBase64(*image, ImageFormat::png()) : std::nullopt;
    };
    for (const auto& first : images) {
        for (const auto& second : images)
            EXPECT_EQ(pngBase64Pair(first, second), std::pair(alone(first), alone(second)));
    }
}

} // namespace
} // namespace kelvara
