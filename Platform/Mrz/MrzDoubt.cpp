#include "Platform/Mrz/MrzDoubt.h"

#include "Platform/Mrz/MrzAlphabet.h"

#include <utility>

namespace kelvara {

namespace {

/// Below this the OCR is in doubt; where the rival weighs the same, check digits cannot help and more is asked for.
constexpr float doubtful = 0.9F;
constexpr float doubtfulUnseen = 0.97F;

void addDoubt(MrzCell& cell, MrzKind kind, QStringView absent)
{
    if (!cell.isCertaintyKnown() || cell.certainty >= doubtfulUnseen)
        return;
    // An engine that is in doubt and does not say between what leaves all open.
    static constexpr QStringView all = u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ<";
    QString others = cell.alternatives.isEmpty() ? all.toString() : cell.alternatives;
    others += doubtfulLookAlikes(cell.read);
    others += doubtfulLookAlikes(cell.taken);
    for (const QChar other : std::as_const(others)) {
        const char16_t character = other.unicode();
        if (character != cell.taken && fits(character, kind) && !cell.rivals.contains(other) && !absent.contains(other)
            && (cell.certainty < doubtful || weighTheSame(character, cell.taken)))
            cell.rivals += other;
    }
}

} // namespace

void addDoubtfulRivals(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone)
{
    const auto add = [&](const MrzPlace& place, MrzKind kind, QStringView shape = {}, QStringView absent = {}) {
        const auto isFiller = [&](int i) { return i < 0 || i >= place.length || zone.at(place, i).taken == u'<'; };
        for (int i = 0; i < place.length; ++i) {
            const bool isInRun = isFiller(i - 1) && isFiller(i) && isFiller(i + 1);
            if (!isInRun)
                addDoubt(zone.at(place, i), shape.isEmpty() ? kind : shapeKind(shape[i]), absent);
        }
    };
    add(format.documentNumber, MrzKind::Any, shapes.documentNumber, shapes.absentLetters);
    add(format.documentNumberCheck, format.longNumbers ? MrzKind::DigitOrFiller : MrzKind::Digit);
    for (const MrzPlace& digits :
        { format.birth, format.birthCheck, format.expiry, format.expiryCheck, format.finalCheck })
        add(digits, MrzKind::Digit);
    add(format.optional1Check, MrzKind::DigitOrFiller);
    if (format.finalCheck.length > 0) {
        add(format.optional1, MrzKind::Any, shapes.optional1);
        add(format.optional2, MrzKind::Any, shapes.optional2);
    }
}

} // namespace kelvara
