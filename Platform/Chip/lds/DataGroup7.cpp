#include "Platform/Chip/lds/DataGroup7.h"

#include "Platform/Chip/lds/LdsText.h"

namespace kelvara::chip {

std::optional<DataGroup7> DataGroup7::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x67);
    if (!content)
        return std::nullopt;
    DataGroup7 group;
    for (const ByteView image : ldsRepeated(*content, 0x5F43)) {
        if (!image.empty())
            group.images.push_back(EncodedImage::of(image));
    }
    if (group.images.empty())
        return std::nullopt;
    group.raw = bytes(file);
    return group;
}

} // namespace kelvara::chip
