#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace kelvara {

/// The layouts of ICAO Doc 9303.
enum class MrzDocumentFormat {
    TD1, ///< Cards: three lines of 30.
    TD2, ///< Larger cards: two lines of 36.
    TD3, ///< Passports: two lines of 44.
    MRVA, ///< Visas: two lines of 44, without a final check digit.
    MRVB ///< Small visas: two lines of 36, without a final check digit.
};

/// A place where the result does not stand on the read text alone. `line` and `column` count from 0 within the
/// document's own lines, after lengths were mended.
struct MrzMark
{
    enum class Kind {
        CorrectedByGrammar, ///< The place allows only one of the characters that look like the one read.
        CorrectedByCheckDigit, ///< Several were possible; only with this one do the check digits come out.
        Ambiguous, ///< Another character here would satisfy every check digit as well.
        LengthMended ///< Fillers (or a stray character) were added or taken here.
    };

    int line = 0;
    int column = 0;
    QChar read; ///< Null where nothing was read.
    QChar taken; ///< Null where something was dropped.
    Kind kind = Kind::CorrectedByGrammar;
};

/// What a machine-readable zone says. Numbers and codes are without the fillers around them, names have spaces for
/// fillers; nothing else is changed: a filler within a number stays `<`, transliterated letters stay as they are.
/// Personal data. A value; any thread.
struct QKMRZResult
{
    MrzDocumentFormat format = MrzDocumentFormat::TD1;
    QString documentType; ///< One or two letters, such as "I" or "P".
    QString countryCode; ///< Issuing state, one to three letters.
    QString surnames; ///< Primary identifier.
    QString givenNames; ///< Secondary identifier; empty when there is none. May be cut off, as the line is short.
    QString documentNumber; ///< Whole, also where a card continues it in the optional data.
    QString nationality; ///< Code of one to three letters.
    std::optional<QDate> birthDate; ///< Absent when it is not a day of the calendar. Never in the future.
    std::optional<QString> sex; ///< "M", "F", or "X" where that is printed; absent for a filler or anything else.
    std::optional<QDate> expiryDate; ///< Absent when it is not a day of the calendar. The year nearest to the present.
    QString personalNumber; ///< Optional data; on a Turkish identity card the identity number.
    std::optional<QString> personalNumber2; ///< Second optional data, which only cards of three lines have.

    /// The check digits as taken (one digit each; `<` where an empty field has none), absent where the format or the
    /// field has none. A document number continued in the optional data has its check digit there.
    QString documentNumberCheckDigit;
    QString birthDateCheckDigit;
    QString expiryDateCheckDigit;
    std::optional<QString> personalNumberCheckDigit;
    std::optional<QString> finalCheckDigit;

    // Whether each of them is right for what it protects.
    bool isDocumentNumberValid = false;
    bool isBirthDateValid = false;
    bool isExpiryDateValid = false;
    std::optional<bool> isPersonalNumberValid;
    std::optional<bool> isFinalCheckDigitValid;

    /// Every check digit of the format is right, both dates are days of the calendar, and, when the text comes from an
    /// OCR, nothing else speaks against the reading: see `QKMRZParser`. Only such a reading may be trusted.
    bool allCheckDigitsValid = false;

    /// The document's own lines as taken, each of the format's length.
    QStringList lines;

    /// Corrections and doubts, in no particular order. Empty for a text that was taken as it stood.
    std::vector<MrzMark> marks;
};

} // namespace kelvara
