#pragma once

#include "Platform/Chip/Tlv.h"
#include "Platform/Foundation/Export.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace kelvara::chip {

/// A name as the LDS writes it: primary identifier, two fillers, secondary identifiers. A value.
struct KELVARA_EXPORT HolderName
{
    QString primary; ///< Fillers are spaces.
    QString secondary; ///< Empty where there is none.

    [[nodiscard]] static HolderName parse(const QString& written);
    /// Back in the form of the LDS.
    [[nodiscard]] QString written() const;
    bool operator==(const HolderName&) const = default;
};

/// UTF-8 as text; bytes that are none become replacement characters. Trailing zero bytes are left out.
[[nodiscard]] KELVARA_EXPORT QString ldsText(ByteView utf8);
/// The parts of a value with several, which fillers ('<') separate; empty parts are left out.
[[nodiscard]] KELVARA_EXPORT QStringList ldsParts(const QString& text);

/// The digits of a date or time that a chip keeps either as `digits` ASCII digits or as half as many bytes of binary
/// coded decimals. Absent for anything else.
[[nodiscard]] KELVARA_EXPORT std::optional<QString> ldsDigits(ByteView value, std::size_t digits);

/// The content of a file's outermost template; absent where the file does not begin with it or it is cut off.
[[nodiscard]] KELVARA_EXPORT std::optional<ByteView> ldsContent(ByteView file, Tag tag);

/// The text of a tag among the objects of a level; empty where it is missing.
[[nodiscard]] KELVARA_EXPORT QString ldsTextOf(ByteView content, Tag tag);

/// The values of a tag that may occur several times: all below a template A0 with their count, and all that stand on
/// the level itself.
[[nodiscard]] KELVARA_EXPORT std::vector<ByteView> ldsRepeated(ByteView content, Tag tag);

} // namespace kelvara::chip
