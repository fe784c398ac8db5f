#pragma once

#include "Platform/Chip/software/ChipProfile.h"
#include "Platform/Foundation/Export.h"

#include <QByteArray>
#include <QDir>

#include <variant>

namespace kelvara::chip::software {

/// A profile from its JSON text (Docs/software-chip.md describes the format), or one sentence that names the field at
/// fault. Fields that are left out are as in `ChipProfile`; unknown ones are an error. Paths are seen from `base`.
///
/// Trusts nothing: texts, lists, files and pictures are bounded, and only regular files are read. Keys and authority
/// are made by `SoftwareChip::make`, anew for each chip. Any thread.
[[nodiscard]] KELVARA_EXPORT std::variant<ChipProfile, QString> chipProfileFromJson(
    const QByteArray& json, const QDir& base);

} // namespace kelvara::chip::software
