#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Mrz/MrzLineReading.h"
#include "Platform/Mrz/QKMRZResult.h"

#include <QDate>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace kelvara {

/// Reads machine-readable zones of ICAO Doc 9303 (cards, passports, visas) from lines of text.
///
/// Check digits are blind to much of what an OCR does: 0, A, K, U and `<` weigh the same, and two errors can cancel.
/// With OCR correction the parser therefore
///  - replaces a character only where the field's alphabet forces it (letters where digits must be, and the reverse),
///  or
///    where exactly one of the look-alikes satisfies the check digits. It never makes a check digit up;
///  - knows the alphabets of some issuing states: a Turkish identity card has the document number A99A99999 and an
///    identity number of eleven digits with two check digits of its own;
///  - withholds `allCheckDigitsValid` where another likely reading satisfies all check digits too, where fillers stand
///    inside numbers, where a state code is unknown, where the OCR could not read a character of the name, and where so
///    much had to be corrected that unseen errors are likely.
/// Without OCR correction nothing is replaced, and `allCheckDigitsValid` means what it says and that the dates are
/// dates.
///
/// It takes any lines: the zone is looked for in them, stray lines before and after are passed over, and lines up to
/// two characters too short or too long are mended where fillers were lost or doubled and the check digits confirm it.
///
/// Immutable while it parses; several threads may share one.
class KELVARA_EXPORT QKMRZParser
{
public:
    explicit QKMRZParser(bool ocrCorrection = false);

    /// What day it is, for the century of two-digit years; the device's date by default and
    /// for an empty function.
    void setToday(std::function<QDate()> today);

    /// The zone in these lines; absent when no two or three of them have the shape of one. A result with wrong check
    /// digits is a result. Of text alone nothing is known but its characters: with OCR correction, a document number of
    /// no known shape is not vouched for where 6 or 0 stands beside letters or in front, as it weighs the same as G or
    /// U.
    [[nodiscard]] std::optional<QKMRZResult> parse(const QStringList& lines) const;

    /// The same with the OCR's doubt, which counts only with OCR correction. A character of which it is uncertain
    /// counts as any of those it may be: the reading is valid only if just one combination satisfies all check digits.
    /// A certain one is not questioned.
    [[nodiscard]] std::optional<QKMRZResult> parse(const std::vector<MrzLineReading>& lines) const;

private:
    bool m_ocrCorrection;
    std::function<QDate()> m_today;
};

} // namespace kelvara
