#pragma once

#include "Platform/Chip/lds/EncodedImage.h"
#include "Platform/Chip/lds/LdsText.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG11: more about the holder than the machine-readable zone has room for (ICAO Doc 9303-10 §4.7.11). Text is UTF-8 on
/// the chip and may be in the national script. Everything is optional: what the file lacks is empty or absent. A value.
struct KELVARA_EXPORT DataGroup11
{
    std::optional<HolderName> fullName;
    std::vector<HolderName> otherNames;
    QString personalNumber;
    std::optional<QString> birthDate; ///< YYYYMMDD; zeros for unknown parts.
    QStringList placeOfBirth; ///< Parts: place, region, state.
    QStringList address; ///< Parts.
    QString telephone;
    QString profession;
    QString title;
    QString personalSummary;
    std::optional<EncodedImage> proofOfCitizenship;
    QStringList otherTravelDocuments; ///< Numbers.
    QString custody;
    Bytes raw;

    /// Absent for anything but a DG11. A value that is none is left out, the others stay.
    [[nodiscard]] static std::optional<DataGroup11> parse(ByteView file);
};

} // namespace kelvara::chip
