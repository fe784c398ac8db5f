#include "Platform/Imaging/Srgb.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace kelvara::imaging {

namespace {

// Fine enough that even the darkest bytes, where the curve is steepest, own five steps each.
constexpr int kSteps = 16384;

const std::array<std::uint8_t, kSteps + 1> kByteOfLinear = [] {
    std::array<std::uint8_t, kSteps + 1> table {};
    for (int step = 0; step <= kSteps; ++step)
        table[step] = static_cast<std::uint8_t>(std::lround(255.0F * srgbEncoded(float(step) / kSteps)));
    return table;
}();

// Interpolation of opaque pixels may miss 1 by a rounding.
constexpr float kOpaque = 0.9999F;

/// 0 for NaN too.
float limited(float value)
{
    return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

using Float4 [[gnu::vector_size(16)]] = float;
using Int4 [[gnu::vector_size(16)]] = int;

QRgb encodedOpaque(const Pixel& pixel)
{
    constexpr Float4 half = { 0.5F, 0.5F, 0.5F, 0.5F };
    constexpr Float4 most = { kSteps + 0.5F, kSteps + 0.5F, kSteps + 0.5F, kSteps + 0.5F };
    const Float4 scaled = std::bit_cast<Float4>(pixel) * float(kSteps) + half;
    const Float4 raised = scaled > half ? scaled : half; // a NaN becomes the least too
    const auto step = __builtin_convertvector(raised < most ? raised : most, Int4);
    return 0xFF000000U | unsigned(kByteOfLinear[step[0]]) << 16 | unsigned(kByteOfLinear[step[1]]) << 8
        | kByteOfLinear[step[2]];
}

/// The rare pixel that is neither opaque nor transparent: colours are separated from alpha on both sides.
QRgb encodedTranslucent(const Pixel& pixel)
{
    const float alpha = limited(pixel.a);
    const auto premultiplied
        = [&](float linear) { return int(std::lround(255.0F * alpha * srgbEncoded(linear / alpha))); };
    return qRgba(
        premultiplied(pixel.r), premultiplied(pixel.g), premultiplied(pixel.b), int(std::lround(255.0F * alpha)));
}

Pixel decodedTranslucent(QRgb pixel)
{
    const int alpha = qAlpha(pixel);
    if (alpha == 0)
        return {};
    const float a = float(alpha) / 255.0F;
    const auto linear = [&](int byte) { return a * srgbDecoded(float(byte) / float(alpha)); };
    return { linear(qRed(pixel)), linear(qGreen(pixel)), linear(qBlue(pixel)), a };
}

} // namespace

const std::array<float, 256> kLinearOfByte = [] {
    std::array<float, 256> table {};
    for (int byte = 0; byte < 256; ++byte)
        table[byte] = srgbDecoded(float(byte) / 255.0F);
    return table;
}();

float srgbDecoded(float encoded)
{
    const float value = limited(encoded);
    return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
}

float srgbEncoded(float linear)
{
    const float value = limited(linear);
    return value <= 0.0031308F ? value * 12.92F : 1.055F * std::pow(value, 1.0F / 2.4F) - 0.055F;
}

Pixel decodedPremultiplied(QRgb pixel)
{
    // The rare pixel has a function of its own, so that this one is small enough to become part of loops.
    if (qAlpha(pixel) == 255) [[likely]]
        return { kLinearOfByte[qRed(pixel)], kLinearOfByte[qGreen(pixel)], kLinearOfByte[qBlue(pixel)], 1.0F };
    return decodedTranslucent(pixel);
}

void decodeRow(const QRgb* in, int count, bool opaque, Pixel* out)
{
    const QRgb forced = opaque ? 0xFF000000U : 0U;
    std::transform(in, in + count, out, [&](QRgb pixel) { return decodedPremultiplied(pixel | forced); });
}

void encodeRow(const Pixel* in, int count, QRgb* out)
{
    // Binarised pictures have rows of nothing but pure white and black.
    constexpr Float4 white = { 1, 1, 1, 1 };
    constexpr Float4 black = { 0, 0, 0, 1 };
    for (; count > 0; --count, ++in, ++out) {
        const auto pixel = std::bit_cast<Float4>(*in);
        const auto notWhite = std::bit_cast<std::array<std::uint64_t, 2>>(Int4(pixel != white));
        if ((notWhite[0] | notWhite[1]) == 0) {
            *out = 0xFFFFFFFFU;
            continue;
        }
        const auto notBlack = std::bit_cast<std::array<std::uint64_t, 2>>(Int4(pixel != black));
        if ((notBlack[0] | notBlack[1]) != 0)
            break;
        *out = 0xFF000000U;
    }
    std::transform(in, in + count, out, [](const Pixel& pixel) -> QRgb {
        if (pixel.a >= kOpaque) [[likely]]
            return encodedOpaque(pixel);
        return pixel.a > 0.0F ? encodedTranslucent(pixel) : 0U;
    });
}

} // namespace kelvara::imaging
