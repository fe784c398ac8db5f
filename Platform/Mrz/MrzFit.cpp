#include "Platform/Mrz/MrzFit.h"

#include "Platform/Mrz/MrzAlphabet.h"
#include "Platform/Mrz/MrzCheckDigit.h"

#include <utility>

namespace kelvara {

namespace {

/// Optional data of which at least these parts are fillers are taken for empty if the rest looks like fillers.
constexpr int emptyParts = 3;
constexpr int emptyOf = 4;

MrzKind shapeKind(QChar kind)
{
    return kind == u'A' ? MrzKind::Letter : kind == u'9' ? MrzKind::Digit : MrzKind::Filler;
}

class Fitter
{
public:
    Fitter(const MrzFormat& format, MrzZone& zone) : m_format(format), m_zone(zone) { }

    MrzFitting fit()
    {
        fitDocumentCode();
        m_result.isStateKnown = fitState(m_format.state);
        if (!fitState(m_format.nationality) || !m_result.isStateKnown)
            ++m_result.violations;
        m_result.shapes = mrzShapes(m_format.format, m_zone.text(m_format.state));
        fitPlace(m_format.documentNumberCheck, m_format.longNumbers ? MrzKind::DigitOrFiller : MrzKind::Digit);
        for (const MrzPlace& date : { m_format.birth, m_format.expiry })
            fitPlace(date, MrzKind::DigitOrFiller);
        for (const MrzPlace& check : { m_format.birthCheck, m_format.expiryCheck, m_format.finalCheck })
            fitPlace(check, MrzKind::Digit);
        fitPlace(m_format.optional1Check, MrzKind::DigitOrFiller);
        fitDocumentNumber();
        fitOptional(m_format.optional1, m_result.shapes.optional1);
        fitOptional(m_format.optional2, m_result.shapes.optional2);
        fitNames();
        return std::move(m_result);
    }

private:
    void take(MrzCell& cell, char16_t character)
    {
        cell.taken = character;
        ++m_result.corrections;
    }

    void fitCell(MrzCell& cell, MrzKind kind)
    {
        if (fits(cell.taken, kind))
            return;
        const QStringView options = lookAlikes(cell.taken, kind);
        if (options.isEmpty()) {
            ++m_result.violations;
            return;
        }
        take(cell, options.front().unicode());
        cell.rivals = options.mid(1).toString();
    }

    void fitPlace(const MrzPlace& place, MrzKind kind)
    {
        for (int i = 0; i < place.length; ++i)
            fitCell(m_zone.at(place, i), kind);
    }

    void fitDocumentCode()
    {
        MrzCell& first = m_zone.at(m_format.type);
        if (!m_format.firstLetters.contains(QChar(first.taken))) {
            const bool isOne = m_format.firstLetters.contains(u'I')
                && (first.taken == u'1' || first.taken == u'L' || first.taken == u'T' || first.taken == u'|');
            if (isOne)
                take(first, u'I');
            else
                ++m_result.violations;
        }
        MrzCell& second = m_zone.at(m_format.type, 1);
        if (second.taken == u'K')
            take(second, u'<'); // No document code has it.
        else
            fitCell(second, MrzKind::LetterOrFiller);
    }

    /// True if it is a code, perhaps after one character was taken for a look-alike.
    bool fitState(const MrzPlace& place)
    {
        for (int i = 0; i < place.length; ++i)
            fitCell(m_zone.at(place, i), MrzKind::LetterOrFiller);
        const QString code = m_zone.text(place);
        if (isMrzState(code))
            return true;
        std::pair<int, char16_t> found { -1, 0 };
        for (int i = 0; i < place.length; ++i) {
            for (const QChar other : doubtfulLookAlikes(m_zone.at(place, i).read)) {
                QString changed = code;
                changed[i] = other;
                if (!isMrzState(changed))
                    continue;
                if (found.first >= 0)
                    return false;
                found = { i, other.unicode() };
            }
        }
        if (found.first < 0)
            return false;
        take(m_zone.at(place, found.first), found.second);
        return true;
    }

    void fitShape(const MrzPlace& place, QStringView shape)
    {
        for (int i = 0; i < place.length; ++i)
            fitCell(m_zone.at(place, i), shapeKind(shape[i]));
    }

    void fitDocumentNumber()
    {
        const MrzPlace& place = m_format.documentNumber;
        if (!m_result.shapes.documentNumber.isEmpty()) {
            fitShape(place, m_result.shapes.documentNumber);
            return;
        }
        fitPlace(place, MrzKind::Any);
        if (m_zone.at(place).taken == u'<')
            ++m_result.violations;
        addRivals(place, true);
    }

    /// Whether nearly all of the place are fillers and the rest may be.
    [[nodiscard]] bool isEmpty(const MrzPlace& place) const
    {
        int fillers = 0;
        for (int i = 0; i < place.length; ++i) {
            const char16_t character = m_zone.at(place, i).taken;
            if (character == u'<')
                ++fillers;
            else if (lookAlikes(character, MrzKind::Filler).isEmpty())
                return false;
        }
        return fillers * emptyOf >= place.length * emptyParts;
    }

    void fitOptional(const MrzPlace& place, QStringView shape)
    {
        if (place.length == 0)
            return;
        if (!shape.isEmpty())
            fitShape(place, shape);
        else if (isEmpty(place))
            fitPlace(place, MrzKind::Filler);
        else {
            fitPlace(place, MrzKind::Any);
            addRivals(place, false);
        }
    }

    /// The character beside the place's `i`th; 0 beyond its ends.
    [[nodiscard]] char16_t beside(const MrzPlace& place, int i) const
    {
        return i < 0 || i >= place.length ? char16_t(0) : m_zone.at(place, i).taken;
    }

    /// Where any letter and digit may stand: what is out of place there.
    void addRivals(const MrzPlace& place, bool isNumber)
    {
        for (int i = 0; i < place.length; ++i) {
            MrzCell& cell = m_zone.at(place, i);
            if (cell.isCertaintyKnown())
                continue;
            const char16_t before = beside(place, i - 1);
            const char16_t after = beside(place, i + 1);
            const QStringView digit = lookAlikes(cell.taken, MrzKind::Digit);
            if (isMrzLetter(cell.taken) && !digit.isEmpty() && (isMrzDigit(after) || isMrzDigit(before)) && i > 0)
                cell.rivals += digit;
            if (isMrzDigit(cell.taken) && isMrzLetter(before) && isMrzLetter(after))
                cell.rivals += lookAlikes(cell.taken, MrzKind::Letter);
            // A filler and K weigh the same: at the end of a run each may be the other.
            if (cell.taken == u'K' && (before == u'<' || after == u'<' || (isNumber && after == 0)))
                cell.rivals += u'<';
            const bool isInside = after != 0 && after != u'<' && before != 0 && before != u'<';
            if (cell.taken == u'<' && isInside && (isNumber || isMrzLetter(before) || isMrzLetter(after)))
                cell.rivals += u'K';
        }
    }

    /// Names are protected by nothing: an unreadable character makes the reading worse, not wrong.
    void fitName(MrzCell& cell, MrzKind kind)
    {
        const int violations = std::exchange(m_result.violations, 0);
        fitCell(cell, kind);
        m_result.corrections += std::exchange(m_result.violations, violations);
        cell.rivals.clear();
    }

    /// Letters, and fillers for what stands lonely in the fillers behind the names.
    void fitNames()
    {
        const MrzPlace& place = m_format.names;
        bool hasGivenNames = false;
        for (int i = 0; i < place.length;) {
            int end = i;
            while (beside(place, end) != u'<' && beside(place, end) != 0)
                ++end;
            const int run = fillersBefore(place, i);
            const bool isBehind = run >= 3 || (hasGivenNames && run >= 2);
            const bool isLonely = end > i && isBehind && looksLikeFillers(place, i, end);
            for (int at = i; at < end; ++at)
                fitName(m_zone.at(place, at), isLonely ? MrzKind::Filler : MrzKind::LetterOrFiller);
            hasGivenNames |= end > i && !isLonely && run >= 2;
            i = end + 1;
        }
    }

    /// How many fillers stand right before the place's `i`th character.
    [[nodiscard]] int fillersBefore(const MrzPlace& place, int i) const
    {
        int count = 0;
        while (beside(place, i - 1 - count) == u'<')
            ++count;
        return count;
    }

    [[nodiscard]] bool looksLikeFillers(const MrzPlace& place, int begin, int end) const
    {
        if (end - begin == 1)
            return !lookAlikes(beside(place, begin), MrzKind::Filler).isEmpty();
        for (int i = begin; i < end; ++i) {
            if (beside(place, i) != u'K')
                return false;
        }
        return true;
    }

    const MrzFormat& m_format;
    MrzZone& m_zone;
    MrzFitting m_result;
};

/// Below this the OCR is in doubt; where the rival weighs the same, check digits cannot help and more is asked for.
constexpr float doubtful = 0.9F;
constexpr float doubtfulUnseen = 0.97F;

void addDoubt(MrzCell& cell, MrzKind kind)
{
    if (!cell.isCertaintyKnown() || cell.certainty >= doubtfulUnseen)
        return;
    QString others = cell.alternatives;
    others += doubtfulLookAlikes(cell.read);
    others += doubtfulLookAlikes(cell.taken);
    for (const QChar other : std::as_const(others)) {
        const char16_t character = other.unicode();
        const bool isUnseen = mrzCharacterValue(character) % 10 == mrzCharacterValue(cell.taken) % 10;
        if (character != cell.taken && fits(character, kind) && !cell.rivals.contains(other)
            && (isUnseen || cell.certainty < doubtful))
            cell.rivals += other;
    }
}

} // namespace

MrzFitting fitMrzZone(const MrzFormat& format, MrzZone& zone)
{
    return Fitter(format, zone).fit();
}

void addDoubtfulRivals(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone)
{
    const auto add = [&](const MrzPlace& place, MrzKind kind, QStringView shape = {}) {
        for (int i = 0; i < place.length; ++i)
            addDoubt(zone.at(place, i), shape.isEmpty() ? kind : shapeKind(shape[i]));
    };
    add(format.documentNumber, MrzKind::Any, shapes.documentNumber);
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
