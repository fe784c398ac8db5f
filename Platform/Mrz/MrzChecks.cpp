#include "Platform/Mrz/MrzChecks.h"

#include "Platform/Foundation/MrzDates.h"
#include "Platform/Mrz/MrzAlphabet.h"
#include "Platform/Mrz/MrzCheckDigit.h"

namespace kelvara {

namespace {

QString withoutFillersAtEnd(QString text)
{
    while (text.endsWith(u'<'))
        text.chop(1);
    return text;
}

bool hasCheckDigit(const MrzZone& zone, const MrzPlace& field, const MrzPlace& check)
{
    return hasMrzCheckDigit(zone.text(field), zone.at(check).taken);
}

} // namespace

MrzDocumentNumber mrzDocumentNumber(const MrzFormat& format, const MrzZone& zone)
{
    const QString field = zone.text(format.documentNumber);
    const QString check = zone.text(format.documentNumberCheck);
    const QString optional = zone.text(format.optional1);
    if (format.longNumbers && check == QStringView(u"<") && !field.endsWith(u'<')) {
        // The number runs on up to the next filler; its last character there is the check digit.
        const qsizetype filler = optional.indexOf(u'<');
        const QString more = optional.left(filler);
        if (more.size() >= 2 && isMrzDigit(more.back().unicode())) {
            const QString number = field + more.chopped(1);
            return { number, more.right(1), filler < 0 ? QString() : optional.mid(filler),
                hasMrzCheckDigit(number, more.back().unicode()) };
        }
    }
    return { withoutFillersAtEnd(field), check, optional, hasMrzCheckDigit(field, check.front().unicode()) };
}

int MrzChecks::count() const
{
    return documentNumber + birth + expiry + personalNumber.value_or(false) + final.value_or(false);
}

bool MrzChecks::all() const
{
    return documentNumber && birth && expiry && personalNumber.value_or(true) && final.value_or(true) && areDatesReal;
}

MrzChecks checkMrzZone(const MrzFormat& format, const MrzShapes& shapes, const MrzZone& zone, const QDate& today)
{
    MrzChecks checks;
    const MrzDocumentNumber number = mrzDocumentNumber(format, zone);
    checks.documentNumber = number.isValid && !number.number.isEmpty();
    checks.birth = hasCheckDigit(zone, format.birth, format.birthCheck);
    checks.expiry = hasCheckDigit(zone, format.expiry, format.expiryCheck);
    if (format.optional1Check.length > 0) {
        const QString personal = zone.text(format.optional1);
        const char16_t digit = zone.at(format.optional1Check).taken;
        // An empty field may have a filler for its check digit.
        checks.personalNumber
            = hasMrzCheckDigit(personal, digit) || (digit == u'<' && withoutFillersAtEnd(personal).isEmpty());
    }
    if (format.finalCheck.length > 0) {
        QString covered;
        for (const MrzPlace& part : format.finalParts)
            covered += zone.text(part);
        checks.final = hasMrzCheckDigit(covered, zone.at(format.finalCheck).taken);
    }
    checks.areDatesReal
        = mrzBirthDate(zone.text(format.birth), today) && mrzExpiryDate(zone.text(format.expiry), today);
    if (shapes.turkishIdentityNumber) {
        QString identity = number.rest;
        checks.isIdentityNumberRight = isTurkishIdentityNumber(identity.remove(u'<'));
    }
    return checks;
}

} // namespace kelvara
