#include "Platform/Chip/lds/DecodingEffort.h"

#include "Platform/Chip/lds/BigEndian.h"
#include "Platform/Chip/lds/EncodedImage.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

/// Cameras and encoders write up to ten.
constexpr std::ptrdiff_t kMostScans = 64;
/// Encoders write one to some dozens.
constexpr std::size_t kMostLayers = 256;
/// Powers of two of an area: blocks of 16 by 16 and precincts of 32 by 32 are smaller than any encoder's usual ones.
constexpr unsigned kLeastBlock = 8, kLeastPrecinct = 10;

enum Marker : std::uint8_t {
    CodingStyle = 0x52,
    ComponentCodingStyle = 0x53,
    TilePart = 0x90,
    TileData = 0x93,
    EndOfCodestream = 0xD9,
};
/// Further ones of ITU-T T.800 §A.2 and T.801. What follows another one, decoders and this need not see alike.
constexpr std::array<std::uint8_t, 17> kOtherMarkers { 0x50, 0x51, 0x55, 0x57, 0x58, 0x5C, 0x5D, 0x5E, 0x5F, 0x60, 0x61,
    0x63, 0x64, 0x74, 0x75, 0x77, 0x78 };

bool isJpegModest(ByteView data)
{
    std::ptrdiff_t scans = 0;
    // Within a scan's data the pair does not occur; within other segments it may, once in many pictures.
    for (std::size_t at = 0; at + 1 < data.size(); ++at)
        scans += data[at] == 0xFF && data[at + 1] == 0xDA ? 1 : 0;
    return scans <= kMostScans;
}

/// The part of a coding style that says how small the pieces are (ITU-T T.800 §A.6.1, table A.15).
bool isStyleModest(ByteView style, bool namesPrecincts)
{
    constexpr std::size_t kFixed = 5;
    if (style.size() < kFixed)
        return false;
    const unsigned block = (style[1] & 0x0FU) + 2 + (style[2] & 0x0FU) + 2;
    if (block < kLeastBlock)
        return false;
    const ByteView precincts = style.subspan(kFixed);
    return !namesPrecincts || std::all_of(precincts.begin(), precincts.end(), [](std::uint8_t sizes) {
        return (sizes & 0x0FU) + (sizes >> 4) >= kLeastPrecinct;
    });
}

/// `segment`: after its length.
bool isSegmentModest(std::uint8_t marker, ByteView segment)
{
    if (marker == CodingStyle) {
        constexpr std::size_t kBefore = 5;
        return segment.size() > kBefore && bigEndianAt(segment, 2, 2) <= kMostLayers
            && isStyleModest(segment.subspan(kBefore), (segment[0] & 1) != 0);
    }
    if (marker == ComponentCodingStyle) { // of one of at most four components, so that its number takes a byte
        constexpr std::size_t kBefore = 2;
        return segment.size() > kBefore && isStyleModest(segment.subspan(kBefore), (segment[1] & 1) != 0);
    }
    return true;
}

bool isCodestreamModest(ByteView data)
{
    std::size_t at = 2;
    std::size_t endOfPart = data.size();
    while (at + 2 <= data.size()) {
        const std::uint8_t marker = data[at + 1];
        if (data[at] != 0xFF)
            return false;
        if (marker == EndOfCodestream)
            return true;
        if (marker == TileData) {
            if (endOfPart <= at) // the part is said to end before its data begin: there is no end to going round
                return false;
            at = endOfPart;
            continue;
        }
        const bool isKnown = marker == CodingStyle || marker == ComponentCodingStyle || marker == TilePart
            || std::find(kOtherMarkers.begin(), kOtherMarkers.end(), marker) != kOtherMarkers.end();
        const std::size_t length = data.size() - at >= 4 ? bigEndianAt(data, at + 2, 2) : 0;
        if (!isKnown || length < 2 || length > data.size() - at - 2
            || !isSegmentModest(marker, data.subspan(at + 4, length - 2)))
            return false;
        if (marker == TilePart) {
            constexpr std::size_t kSegment = 12;
            const std::size_t size = length >= 10 ? bigEndianAt(data, at + 6, 4) : 1;
            if (size != 0 && size < kSegment)
                return false;
            // A picture that was cut off ends before its last part does.
            endOfPart = size == 0 ? data.size() : std::min(data.size(), at + size);
        }
        at += 2 + length;
    }
    return true;
}

} // namespace

bool isDecodingModest(ByteView encoded)
{
    if (imageKindOf(encoded) == ImageKind::Jpeg)
        return isJpegModest(encoded);
    const auto codestream = codestreamOf(encoded);
    return codestream && isCodestreamModest(*codestream);
}

} // namespace kelvara::chip
