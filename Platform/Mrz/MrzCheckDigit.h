#pragma once

#include <QStringView>

#include <optional>

namespace kelvara {

/// What a character weighs in check digits: 0 to 35, a filler 0; -1 for a character that no zone has.
[[nodiscard]] int mrzCharacterValue(char16_t character);

/// The 7-3-1 check digit of a text; absent when it holds a character that no zone has. 0 for the empty text.
[[nodiscard]] std::optional<int> mrzCheckDigit(QStringView text);

/// Whether the text has this check digit, given as the character that is printed.
[[nodiscard]] bool hasMrzCheckDigit(QStringView text, char16_t digit);

/// Whether the text is a Turkish identity number: eleven digits, the first not 0, the last two the check digits of the
/// others.
[[nodiscard]] bool isTurkishIdentityNumber(QStringView text);

} // namespace kelvara
