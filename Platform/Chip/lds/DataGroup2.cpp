#include "Platform/Chip/lds/DataGroup2.h"

#include "Platform/Chip/lds/LdsText.h"

namespace kelvara::chip {

namespace {

constexpr int kDeepest = 8;

/// The first value among nested objects that begins like a picture.
std::optional<EncodedImage> pictureIn(ByteView level, int depth)
{
    TlvReader reader(level);
    while (const auto object = reader.next()) {
        if (imageKindOf(object->value) != ImageKind::Unknown)
            return EncodedImage::of(object->value);
        if (object->isConstructed() && depth < kDeepest) {
            if (auto picture = pictureIn(object->value, depth + 1))
                return picture;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<DataGroup2> DataGroup2::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x75);
    const auto group = content ? findTlv(*content, 0x7F61) : std::nullopt;
    if (!group)
        return std::nullopt;
    DataGroup2 result;
    TlvReader templates(group->value);
    while (const auto one = templates.next()) {
        if (one->tag != 0x7F60)
            continue;
        for (const Tag tag : { Tag { 0x5F2E }, Tag { 0x7F2E } }) { // plain or constructed
            const auto block = findTlv(one->value, tag);
            if (!block)
                continue;
            auto faces = parseFaceRecord(block->value);
            if (faces.empty()) {
                if (auto picture = pictureIn(block->value, 0))
                    faces.push_back({ std::move(*picture) });
            }
            for (FaceImage& face : faces)
                result.faces.push_back(std::move(face));
        }
    }
    if (result.faces.empty())
        return std::nullopt;
    result.raw = bytes(file);
    return result;
}

} // namespace kelvara::chip
