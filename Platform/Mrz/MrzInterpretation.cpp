#include "Platform/Mrz/MrzInterpretation.h"

#include "Platform/Foundation/MrzDates.h"
#include "Platform/Mrz/MrzChecks.h"
#include "Platform/Mrz/MrzDoubt.h"
#include "Platform/Mrz/MrzFit.h"
#include "Platform/Mrz/MrzNames.h"
#include "Platform/Mrz/MrzRivals.h"

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

/// Where more than so many characters had to be replaced, the chances are that two others cancel each other unseen.
constexpr int mostTrustedCorrections = 5;
/// A character of a name that the OCR is less certain of than this was not read; no check digit covers for it.
constexpr float leastLegible = 0.3F;

QString withoutFillersAround(QStringView text)
{
    while (text.startsWith(u'<'))
        text = text.mid(1);
    while (text.endsWith(u'<'))
        text.chop(1);
    return text.toString();
}

std::optional<QString> sexOf(const QString& text)
{
    static constexpr QStringView known = u"MFX";
    return known.contains(text.front()) ? std::optional(text) : std::nullopt;
}

void fillFields(QKMRZResult& result, const MrzFormat& format, const MrzZone& zone, const QDate& today)
{
    result.format = format.format;
    result.documentType = withoutFillersAround(zone.text(format.type));
    result.countryCode = withoutFillersAround(zone.text(format.state));
    MrzNames names = splitMrzNames(zone.text(format.names));
    result.surnames = std::move(names.surnames);
    result.givenNames = std::move(names.givenNames);
    MrzDocumentNumber number = mrzDocumentNumber(format, zone);
    result.documentNumber = std::move(number.number);
    result.documentNumberCheckDigit = std::move(number.checkDigit);
    result.nationality = withoutFillersAround(zone.text(format.nationality));
    result.birthDate = mrzBirthDate(zone.text(format.birth), today);
    result.birthDateCheckDigit = zone.text(format.birthCheck);
    result.sex = sexOf(zone.text(format.sex));
    result.expiryDate = mrzExpiryDate(zone.text(format.expiry), today);
    result.expiryDateCheckDigit = zone.text(format.expiryCheck);
    result.personalNumber = withoutFillersAround(number.rest);
    if (format.optional1Check.length > 0)
        result.personalNumberCheckDigit = zone.text(format.optional1Check);
    if (format.optional2.length > 0)
        result.personalNumber2 = withoutFillersAround(zone.text(format.optional2));
    if (format.finalCheck.length > 0)
        result.finalCheckDigit = zone.text(format.finalCheck);
}

void fillChecks(QKMRZResult& result, const MrzChecks& checks)
{
    result.isDocumentNumberValid = checks.documentNumber;
    result.isBirthDateValid = checks.birth;
    result.isExpiryDateValid = checks.expiry;
    result.isPersonalNumberValid = checks.personalNumber;
    result.isFinalCheckDigitValid = checks.final;
    result.allCheckDigitsValid = checks.all();
}

/// Whether every character of the name and the filler that ends it were seen, as far as the OCR tells.
bool isNameLegible(const MrzFormat& format, const MrzZone& zone)
{
    const MrzPlace& place = format.names;
    int end = place.length;
    while (end > 0 && zone.at(place, end - 1).taken == u'<')
        --end;
    for (int i = 0; i < std::min(end + 1, place.length); ++i) {
        const MrzCell& cell = zone.at(place, i);
        if (cell.isCertaintyKnown() && cell.certainty < leastLegible)
            return false;
    }
    return true;
}

/// `fitted` is the zone before its rivals were tried.
void addMarks(std::vector<MrzMark>& marks, const MrzZone& fitted, const MrzZone& zone, bool isAmbiguous)
{
    for (std::size_t line = 0; line < zone.lines.size(); ++line) {
        for (std::size_t column = 0; column < zone.lines[line].size(); ++column) {
            const MrzCell& cell = zone.lines[line][column];
            const auto add = [&](MrzMark::Kind kind) {
                marks.push_back({ .line = static_cast<int>(line),
                    .column = static_cast<int>(column),
                    .read = QChar(cell.read),
                    .taken = QChar(cell.taken),
                    .kind = kind });
            };
            if (fitted.lines[line][column].taken != cell.taken)
                add(MrzMark::Kind::CorrectedByCheckDigit);
            else if (cell.read != 0 && cell.read != cell.taken)
                add(MrzMark::Kind::CorrectedByGrammar);
            if (isAmbiguous && !cell.rivals.isEmpty())
                add(MrzMark::Kind::Ambiguous);
        }
    }
}

} // namespace

MrzInterpretation interpretMrzZone(
    const MrzFormat& format, MrzZone zone, std::vector<MrzMark> mended, bool ocrCorrection, const QDate& today)
{
    MrzInterpretation found;
    QKMRZResult& result = found.result;
    MrzFitting fitting;
    MrzSettlement settlement;
    if (ocrCorrection) {
        fitting = fitMrzZone(format, zone);
        found.violations = fitting.violations;
        found.corrections = fitting.corrections + static_cast<int>(mended.size());
        result.marks = std::move(mended);
        addDoubtfulRivals(format, fitting.shapes, zone);
        const MrzZone fitted = zone;
        if (fitting.violations == 0) // Otherwise no combination can come out right.
            settlement = settleRivals(format, fitting.shapes, zone, today);
        addMarks(result.marks, fitted, zone, settlement.isAmbiguous);
    } else {
        fitting.isStateKnown = isMrzState(zone.text(format.state));
    }
    const MrzChecks checks = checkMrzZone(format, fitting.shapes, zone, today);
    found.checks = checks.count();
    fillFields(result, format, zone, today);
    result.lines = zone.text();
    fillChecks(result, checks);
    if (ocrCorrection) {
        result.allCheckDigitsValid &= checks.isIdentityNumberRight && found.violations == 0 && !settlement.isAmbiguous
            && !settlement.isGuess && found.corrections <= mostTrustedCorrections && isNameLegible(format, zone);
    }
    found.isPlausible = found.checks >= 2
        || (fitting.isStateKnown && format.firstLetters.contains(QChar(zone.at(format.type).taken)));
    return found;
}

} // namespace kelvara
