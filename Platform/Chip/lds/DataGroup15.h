#pragma once

#include "Platform/Chip/Tlv.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG15: the public key of active authentication (ICAO Doc 9303-10 §4.7.15). A value.
struct KELVARA_EXPORT DataGroup15
{
    Bytes publicKey; ///< A DER SubjectPublicKeyInfo.
    Bytes raw;

    /// Absent for anything but a template around a sequence of an algorithm and a key.
    [[nodiscard]] static std::optional<DataGroup15> parse(ByteView file);
};

} // namespace kelvara::chip
