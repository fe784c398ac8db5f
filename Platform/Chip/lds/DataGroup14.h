#pragma once

#include "Platform/Chip/Tlv.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG14: which protocols the chip speaks, as a DER set of SecurityInfo that is left unread here (ICAO Doc 9303-10
/// §4.7.14). A value.
struct KELVARA_EXPORT DataGroup14
{
    Bytes securityInfos; ///< With the set's own tag and length.
    Bytes raw;

    /// Absent for anything but a template around a set.
    [[nodiscard]] static std::optional<DataGroup14> parse(ByteView file);
};

} // namespace kelvara::chip
