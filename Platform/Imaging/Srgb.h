#pragma once

#include "Platform/Imaging/Node.h"

#include <QRgb>

#include <array>
#include <cstdint>

namespace kelvara::imaging {

/// Linear light of each encoded byte; exact to a float's precision.
extern const std::array<float, 256> kLinearOfByte;

/// The sRGB transfer functions; arguments are limited to 0…1.
[[nodiscard]] float srgbDecoded(float encoded);
[[nodiscard]] float srgbEncoded(float linear);

/// One bitmap pixel (colours multiplied by alpha) in linear light.
[[nodiscard]] Pixel decodedPremultiplied(QRgb pixel);

/// A row of bitmap pixels in linear light. `opaque`: the alpha byte says nothing and counts as 255.
void decodeRow(const QRgb* in, int count, bool opaque, Pixel* out);

/// A row of pixels as bitmap pixels, colours multiplied by alpha; decoding and encoding gives back the same bytes.
void encodeRow(const Pixel* in, int count, QRgb* out);

} // namespace kelvara::imaging
