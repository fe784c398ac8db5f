#pragma once

#include "Platform/Chip/lds/EncodedImage.h"
#include "Platform/Foundation/Export.h"

#include <vector>

namespace kelvara::chip {

/// DG7: the holder's signature or usual mark, in one or several pictures (ICAO Doc 9303-10 §4.7.7). A value.
struct KELVARA_EXPORT DataGroup7
{
    std::vector<EncodedImage> images; ///< At least one.
    Bytes raw;

    /// Absent for a file without a picture.
    [[nodiscard]] static std::optional<DataGroup7> parse(ByteView file);
};

} // namespace kelvara::chip
