#pragma once

#include "Platform/Chip/lds/LdsText.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// DG1: the machine-readable zone as the chip holds it (ICAO Doc 9303-10 §4.7.1). Its text is split by place only;
/// check digits are not judged and the fillers of single fields are cut off at their end. A value.
struct KELVARA_EXPORT DataGroup1
{
    enum class Format { TD1, TD2, TD3 };

    Format format = Format::TD3;
    QStringList lines; ///< Three of 30, two of 36 or two of 44 characters.
    QString documentCode;
    QString issuingState;
    QString documentNumber; ///< Whole, where a long one runs on in the optional data.
    QString nationality;
    QString birthDate; ///< YYMMDD as written, with fillers for unknown parts.
    QString expiryDate; ///< YYMMDD as written.
    QString sex; ///< "M", "F" or "<".
    QString optionalData; ///< TD3: the personal number.
    QString moreOptionalData; ///< TD1: of the second line.
    HolderName name;
    Bytes raw;

    /// Absent for anything but a zone of one of the three lengths in the zone's alphabet (A to Z, digits, '<').
    [[nodiscard]] static std::optional<DataGroup1> parse(ByteView file);
};

} // namespace kelvara::chip
