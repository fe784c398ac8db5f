#pragma once

#include "Platform/Chip/lds/LdsText.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// Somebody to be told in an emergency. A value.
struct PersonToNotify
{
    std::optional<QString> recordedOn; ///< YYYYMMDD.
    HolderName name;
    QString telephone;
    QStringList address; ///< Parts.
};

/// DG16: persons to notify (ICAO Doc 9303-10 §4.7.16). A value.
struct KELVARA_EXPORT DataGroup16
{
    std::vector<PersonToNotify> persons; ///< At least one.
    Bytes raw;

    /// Absent for a file without a person.
    [[nodiscard]] static std::optional<DataGroup16> parse(ByteView file);
};

} // namespace kelvara::chip
