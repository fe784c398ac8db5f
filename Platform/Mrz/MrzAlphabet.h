#pragma once

#include <QStringView>

namespace kelvara {

/// What may stand at a place of a zone.
enum class MrzKind {
    Any, ///< Letters, digits, fillers.
    Digit,
    DigitOrFiller,
    Letter,
    LetterOrFiller,
    Filler
};

[[nodiscard]] bool isMrzDigit(char16_t character);
[[nodiscard]] bool isMrzLetter(char16_t character);

[[nodiscard]] bool fits(char16_t character, MrzKind kind);

/// What a character of a shape ('A', '9', '<') stands for.
[[nodiscard]] MrzKind shapeKind(QChar kind);

/// Whether no check digit tells them apart.
[[nodiscard]] bool weighTheSame(char16_t a, char16_t b);

/// The characters of that kind that an OCR takes for this one, likeliest first; empty when there are none.
[[nodiscard]] QStringView lookAlikes(char16_t character, MrzKind kind);

/// The same for a character of which the OCR itself is in doubt: also digits for digits and letters for letters.
[[nodiscard]] QStringView doubtfulLookAlikes(char16_t character);

} // namespace kelvara
