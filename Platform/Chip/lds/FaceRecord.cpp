#include "Platform/Chip/lds/FaceRecord.h"

#include "Platform/Chip/lds/BigEndian.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

constexpr std::array<std::uint8_t, 8> kBeginning { 'F', 'A', 'C', 0, '0', '1', '0', 0 };
constexpr std::size_t kRecordHead = 14;
constexpr std::size_t kFaceHead = 20;
constexpr std::size_t kFeaturePoint = 8;
constexpr std::size_t kImageHead = 12;

void append(Bytes& to, std::uint32_t value, std::size_t count)
{
    while (count-- > 0)
        to.push_back(static_cast<std::uint8_t>(value >> (8 * count)));
}

/// `block`: one face with its head.
std::optional<FaceImage> parseFace(ByteView block)
{
    if (block.size() < kFaceHead)
        return std::nullopt;
    FaceImage face;
    face.featurePoints = static_cast<std::uint16_t>(bigEndianAt(block, 4, 2));
    face.gender = block[6];
    face.eyeColor = block[7];
    face.hairColor = block[8];
    face.features = bigEndianAt(block, 9, 3);
    face.expression = static_cast<std::uint16_t>(bigEndianAt(block, 12, 2));
    const std::size_t at = kFaceHead + kFeaturePoint * face.featurePoints;
    if (block.size() <= at + kImageHead)
        return std::nullopt;
    const ByteView head = block.subspan(at);
    face.imageType = head[0];
    face.width = static_cast<std::uint16_t>(bigEndianAt(head, 2, 2));
    face.height = static_cast<std::uint16_t>(bigEndianAt(head, 4, 2));
    face.colorSpace = head[6];
    face.sourceType = head[7];
    face.deviceType = static_cast<std::uint16_t>(bigEndianAt(head, 8, 2));
    face.quality = static_cast<std::uint16_t>(bigEndianAt(head, 10, 2));
    face.image = EncodedImage::of(head.subspan(kImageHead));
    return face;
}

} // namespace

std::vector<FaceImage> parseFaceRecord(ByteView record)
{
    std::vector<FaceImage> faces;
    if (record.size() < kRecordHead || !std::equal(kBeginning.begin(), kBeginning.end(), record.begin()))
        return faces;
    const std::size_t count = bigEndianAt(record, 12, 2);
    ByteView rest = record.subspan(kRecordHead);
    while (faces.size() < count && rest.size() >= kFaceHead) {
        // Some issuers count the image only or leave the length out: a single face then takes all that is there.
        std::size_t length = bigEndianAt(rest, 0, 4);
        if (count == 1)
            length = rest.size();
        if (length < kFaceHead || length > rest.size())
            break;
        auto face = parseFace(rest.first(length));
        if (!face)
            break;
        faces.push_back(std::move(*face));
        rest = rest.subspan(length);
    }
    return faces;
}

Bytes makeFaceRecord(const std::vector<FaceImage>& faces)
{
    Bytes blocks;
    for (const FaceImage& face : faces) {
        append(blocks, static_cast<std::uint32_t>(kFaceHead + kImageHead + face.image.data.size()), 4);
        append(blocks, 0, 2); // no feature points
        append(blocks, face.gender, 1);
        append(blocks, face.eyeColor, 1);
        append(blocks, face.hairColor, 1);
        append(blocks, face.features, 3);
        append(blocks, face.expression, 2);
        append(blocks, 0, 3); // pose angles
        append(blocks, 0, 3); // and their uncertainty
        append(blocks, face.imageType, 1);
        append(blocks, face.image.kind == ImageKind::Jpeg2000 ? 1 : 0, 1);
        append(blocks, face.width, 2);
        append(blocks, face.height, 2);
        append(blocks, face.colorSpace, 1);
        append(blocks, face.sourceType, 1);
        append(blocks, face.deviceType, 2);
        append(blocks, face.quality, 2);
        blocks.insert(blocks.end(), face.image.data.begin(), face.image.data.end());
    }
    Bytes record(kBeginning.begin(), kBeginning.end());
    append(record, static_cast<std::uint32_t>(kRecordHead + blocks.size()), 4);
    append(record, static_cast<std::uint32_t>(faces.size()), 2);
    record.insert(record.end(), blocks.begin(), blocks.end());
    return record;
}

} // namespace kelvara::chip
