#pragma once

#include "Platform/Chip/lds/EncodedImage.h"
#include "Platform/Chip/lds/LdsText.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG12: more about the document (ICAO Doc 9303-10 §4.7.12). Everything is optional: what the file lacks is empty or
/// absent. A value.
struct KELVARA_EXPORT DataGroup12
{
    QString issuingAuthority;
    std::optional<QString> issueDate; ///< YYYYMMDD.
    std::vector<HolderName> otherPersons;
    QString endorsements;
    QString taxOrExit;
    std::optional<EncodedImage> front;
    std::optional<EncodedImage> rear;
    std::optional<QString> personalizationTime; ///< YYYYMMDDhhmmss.
    QString personalizationSerial;
    Bytes raw;

    /// Absent for anything but a DG12. A value that is none is left out, the others stay.
    [[nodiscard]] static std::optional<DataGroup12> parse(ByteView file);
};

} // namespace kelvara::chip
