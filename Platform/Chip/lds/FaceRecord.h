#pragma once

#include "Platform/Chip/lds/EncodedImage.h"
#include "Platform/Foundation/Export.h"

#include <cstdint>
#include <vector>

namespace kelvara::chip {

/// A face as ISO/IEC 19794-5 records it. Numbers are as the chip has them. A value.
struct FaceImage
{
    EncodedImage image;
    std::uint8_t gender = 0; ///< 0 unspecified, 1 male, 2 female, 0xFF unknown.
    std::uint8_t eyeColor = 0;
    std::uint8_t hairColor = 0;
    std::uint32_t features = 0; ///< Three bytes of feature flags.
    std::uint16_t expression = 0;
    std::uint16_t featurePoints = 0; ///< How many feature points the record holds.
    std::uint8_t imageType = 0; ///< 0 basic, 1 full frontal, 2 token frontal.
    std::uint16_t width = 0; ///< Pixels, as the record says; the image itself decides.
    std::uint16_t height = 0;
    std::uint8_t colorSpace = 0; ///< 0 unspecified, 1 RGB24, 2 YUV422, 3 grey.
    std::uint8_t sourceType = 0;
    std::uint16_t deviceType = 0;
    std::uint16_t quality = 0;
};

/// The faces of a facial record ("FAC"), each of which holds an image. A record that is cut off gives the faces before
/// the cut; bytes that are no such record give none.
[[nodiscard]] KELVARA_EXPORT std::vector<FaceImage> parseFaceRecord(ByteView record);

/// The record of one or several faces.
[[nodiscard]] KELVARA_EXPORT Bytes makeFaceRecord(const std::vector<FaceImage>& faces);

} // namespace kelvara::chip
