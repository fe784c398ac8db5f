#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Chip/access/MrzKey.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <variant>

namespace kelvara::chip::software {

/// A machine-readable zone as a chip is made from it: its lines are sound and the check digits that make the access
/// key are right. A value.
class ZoneText
{
public:
    /// The zone, or a sentence about what is wrong with it. Lines may have white space around them.
    [[nodiscard]] static std::variant<ZoneText, QString> of(const QStringList& lines);

    [[nodiscard]] const QStringList& lines() const { return m_lines; }
    /// Document number, birth and expiry date, each with its check digit: what a reader is given to open the chip.
    [[nodiscard]] const std::string& keyText() const { return m_keyText; }
    /// The key of that text.
    [[nodiscard]] MrzKey key() const { return *MrzKey::fromText(m_keyText); }

    /// The zone of another document of another holder: other name, other expiry date, all check digits right.
    [[nodiscard]] ZoneText ofAnotherDocument() const;
    /// The same document with another name on it, which no check digit covers.
    [[nodiscard]] ZoneText withAnotherName() const;

private:
    ZoneText() = default;

    QStringList m_lines;
    std::string m_keyText;
};

} // namespace kelvara::chip::software
