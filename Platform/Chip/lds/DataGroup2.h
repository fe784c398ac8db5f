#pragma once

#include "Platform/Chip/lds/FaceRecord.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG2: the holder's face, in one or several pictures (ICAO Doc 9303-10 §4.7.2; CBEFF headers around facial records).
/// A value.
struct KELVARA_EXPORT DataGroup2
{
    std::vector<FaceImage> faces; ///< At least one.
    Bytes raw;

    /// Absent for a file without any picture. Records of a later edition, whose headers are not read, give their
    /// picture with a zero in all other fields.
    [[nodiscard]] static std::optional<DataGroup2> parse(ByteView file);
};

} // namespace kelvara::chip
