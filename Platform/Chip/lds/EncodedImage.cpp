#include "Platform/Chip/lds/EncodedImage.h"

#include "Platform/Chip/lds/BigEndian.h"

#include <algorithm>
#include <array>
#include <climits>

namespace kelvara::chip {

namespace {

constexpr std::array<std::uint8_t, 3> kJpeg { 0xFF, 0xD8, 0xFF };
constexpr std::array<std::uint8_t, 12> kJp2 { 0x00, 0x00, 0x00, 0x0C, 0x6A, 0x50, 0x20, 0x20, 0x0D, 0x0A, 0x87, 0x0A };
constexpr std::array<std::uint8_t, 4> kCodestream { 0xFF, 0x4F, 0xFF, 0x51 };
constexpr std::uint32_t kCodestreamBox = 0x6A703263; // "jp2c"
constexpr std::uint64_t kMostTiles = 4096;

template<std::size_t n> bool startsWith(ByteView data, const std::array<std::uint8_t, n>& beginning)
{
    return data.size() >= n && std::equal(beginning.begin(), beginning.end(), data.begin());
}

std::optional<QSize> sizeOf(std::uint32_t width, std::uint32_t height)
{
    if (width == 0 || height == 0 || width > INT_MAX || height > INT_MAX)
        return std::nullopt;
    return QSize(static_cast<int>(width), static_cast<int>(height));
}

/// Of the first frame header (ITU-T T.81 §B.2.2).
std::optional<QSize> jpegSize(ByteView data)
{
    std::size_t at = 2;
    while (at + 4 <= data.size()) {
        if (data[at] != 0xFF)
            return std::nullopt;
        const std::uint8_t marker = data[at + 1];
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        // Markers without a length: decoders go on behind them, and would come upon another frame header.
        const bool isBare = marker == 0x01 || (marker >= 0xD0 && marker <= 0xD9);
        const std::size_t length = bigEndianAt(data, at + 2, 2);
        if (marker == 0xDA || isBare || length < 2 || length > data.size() - at - 2)
            return std::nullopt;
        if (isFrame)
            return length < 8 ? std::nullopt : sizeOf(bigEndianAt(data, at + 7, 2), bigEndianAt(data, at + 5, 2));
        at += 2 + length;
    }
    return std::nullopt;
}

/// Of the size segment that begins every codestream (ITU-T T.800 §A.5.1).
std::optional<QSize> codestreamSize(ByteView data)
{
    constexpr std::size_t kSegment = 42;
    if (!startsWith(data, kCodestream) || data.size() < kSegment)
        return std::nullopt;
    const std::uint64_t right = bigEndianAt(data, 8, 4), bottom = bigEndianAt(data, 12, 4);
    const std::uint64_t left = bigEndianAt(data, 16, 4), top = bigEndianAt(data, 20, 4);
    const std::uint64_t tileWidth = bigEndianAt(data, 24, 4), tileHeight = bigEndianAt(data, 28, 4);
    const std::uint32_t components = bigEndianAt(data, 40, 2);
    if (right <= left || bottom <= top || tileWidth == 0 || tileHeight == 0 || components == 0 || components > 4)
        return std::nullopt;
    const std::uint64_t across = (right - left) / tileWidth + 2, down = (bottom - top) / tileHeight + 2;
    if (across > kMostTiles || down > kMostTiles || across * down > kMostTiles)
        return std::nullopt;
    return sizeOf(static_cast<std::uint32_t>(right - left), static_cast<std::uint32_t>(bottom - top));
}

} // namespace

EncodedImage EncodedImage::of(ByteView data)
{
    return { imageKindOf(data), bytes(data) };
}

ImageKind imageKindOf(ByteView data)
{
    if (startsWith(data, kJpeg))
        return ImageKind::Jpeg;
    return startsWith(data, kJp2) || startsWith(data, kCodestream) ? ImageKind::Jpeg2000 : ImageKind::Unknown;
}

// The boxes of a file are those of ITU-T T.800 §I.4.
std::optional<ByteView> codestreamOf(ByteView data)
{
    if (startsWith(data, kCodestream))
        return data;
    if (!startsWith(data, kJp2))
        return std::nullopt;
    while (data.size() >= 8) {
        std::uint64_t length = bigEndianAt(data, 0, 4);
        std::size_t head = 8;
        if (length == 1 && data.size() >= 16) {
            length = std::uint64_t { bigEndianAt(data, 8, 4) } << 32 | bigEndianAt(data, 12, 4);
            head = 16;
        }
        if (length == 0)
            length = data.size();
        if (length < head || length > data.size())
            return std::nullopt;
        if (bigEndianAt(data, 4, 4) == kCodestreamBox)
            return data.subspan(head);
        data = data.subspan(static_cast<std::size_t>(length));
    }
    return std::nullopt;
}

std::optional<QSize> imageSizeOf(ByteView data)
{
    switch (imageKindOf(data)) {
    case ImageKind::Jpeg:
        return jpegSize(data);
    case ImageKind::Jpeg2000: {
        const auto codestream = codestreamOf(data);
        return codestream ? codestreamSize(*codestream) : std::nullopt;
    }
    case ImageKind::Unknown:
        break;
    }
    return std::nullopt;
}

} // namespace kelvara::chip
