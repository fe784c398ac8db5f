#include "Platform/Chip/lds/DataGroup14.h"

#include "Platform/Chip/lds/LdsText.h"

namespace kelvara::chip {

std::optional<DataGroup14> DataGroup14::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x6E);
    const auto infos = content ? findTlv(*content, 0x31) : std::nullopt;
    if (!infos)
        return std::nullopt;
    return DataGroup14 { bytes(infos->whole), bytes(file) };
}

} // namespace kelvara::chip
