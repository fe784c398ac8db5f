#pragma once

#include "Platform/Chip/lds/DataGroupId.h"
#include "Platform/Foundation/Export.h"

#include <string>

namespace kelvara::chip {

/// EF.COM: which data groups the chip says it has (ICAO Doc 9303-10 §4.6.1). Nothing signs this file. A value.
struct KELVARA_EXPORT COM
{
    std::string ldsVersion; ///< "1.7", "1.8"; empty where the file has none.
    std::string unicodeVersion; ///< "4.0.0"; empty where the file has none.
    std::vector<DataGroupId> dataGroups; ///< In the file's order, each once.
    Bytes raw;

    /// Absent for anything but an EF.COM with a list of tags.
    [[nodiscard]] static std::optional<COM> parse(ByteView file);
};

} // namespace kelvara::chip
