#include "Platform/Chip/lds/DataGroup15.h"

#include "Platform/Chip/lds/LdsText.h"

namespace kelvara::chip {

std::optional<DataGroup15> DataGroup15::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x6F);
    const auto key = content ? findTlv(*content, 0x30) : std::nullopt;
    const auto parts = key ? allTlvs(key->value) : std::nullopt;
    if (!parts || parts->size() != 2 || (*parts)[0].tag != 0x30 || (*parts)[1].tag != 0x03)
        return std::nullopt;
    return DataGroup15 { bytes(key->whole), bytes(file) };
}

} // namespace kelvara::chip
