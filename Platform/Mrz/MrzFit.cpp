#include "Platform/Mrz/MrzFit.h"

#include "Platform/Mrz/MrzAlphabet.h"

#include <utility>

namespace kelvara {

namespace {

/// Optional data of which at least these parts are fillers are taken for empty if the rest looks like fillers.
constexpr int emptyParts = 3;
constexpr int emptyOf = 4;

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
        return m_result;
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

    [[nodiscard]] bool isOfShape(const MrzPlace& place, QStringView shape) const
    {
        for (qsizetype i = 0; i < shape.size(); ++i) {
            const char16_t character = m_zone.at(place, static_cast<int>(i)).taken;
            if (!fits(character, shapeKind(shape[i])) && lookAlikes(character, shapeKind(shape[i])).isEmpty())
                return false;
        }
        return true;
    }

    void fitDocumentNumber()
    {
        const MrzPlace& place = m_format.documentNumber;
        if (m_format.format != MrzDocumentFormat::TD1 && !isOfShape(place, m_result.shapes.documentNumber))
            m_result.shapes.documentNumber = {}; // Passports of all series are about.
        if (!m_result.shapes.documentNumber.isEmpty()) {
            fitShape(place, m_result.shapes.documentNumber);
            return;
        }
        fitPlace(place, MrzKind::Any);
        for (int i = 0; i < place.length; ++i) {
            MrzCell& cell = m_zone.at(place, i);
            if (m_result.shapes.absentLetters.contains(QChar(cell.taken)))
                fitCell(cell, MrzKind::Digit);
        }
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
            if (m_format.finalCheck.length > 0) // Elsewhere nothing vouches for them anyway.
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
            const char16_t before = beside(place, i - 1);
            const char16_t after = beside(place, i + 1);
            addRivalFillers(cell, before, after, isNumber);
            if (isMrzLetter(cell.taken))
                addRivalsOfLetter(cell, i, before, after);
            else if (isMrzDigit(cell.taken) && !cell.isCertaintyKnown())
                addRivalsOfDigit(cell, before, after, isNumber);
        }
    }

    /// Fillers weigh the same as K, and as 0, A and U: at the end of a run K may be one, lonely in it each of them.
    void addRivalFillers(MrzCell& cell, char16_t before, char16_t after, bool isNumber)
    {
        const bool isFillerBefore = before == u'<' || before == 0;
        const bool isFillerAfter = after == u'<' || after == 0;
        const bool isLonely = isFillerBefore && isFillerAfter;
        if (cell.taken == u'<') {
            const bool isInside
                = !isFillerBefore && !isFillerAfter && (isNumber || isMrzLetter(before) || isMrzLetter(after));
            const bool isLast = isNumber && after == 0 && isMrzLetter(before);
            if (isInside || isLast)
                cell.rivals += u'K';
        } else if (weighTheSame(cell.taken, u'<')
            && (isLonely || (cell.taken == u'K' && (before == u'<' || isFillerAfter)))) {
            cell.rivals += u'<';
        }
    }

    void addRivalsOfLetter(MrzCell& cell, int i, char16_t before, char16_t after)
    {
        const QStringView digits = lookAlikes(cell.taken, MrzKind::Digit);
        if (digits.isEmpty() || !(isMrzDigit(before) || isMrzDigit(after)))
            return;
        const bool isSameWeight = cell.taken != u'L' && weighTheSame(cell.taken, digits.front().unicode());
        static constexpr QStringView commonlyTakenForDigits = u"OISZBGUD";
        cell.isMisplaced
            = i > 0 && isMrzDigit(before) && !isMrzLetter(after) && commonlyTakenForDigits.contains(QChar(cell.taken));
        // (L and 1 weigh the same as well, but are rarely taken for each other.)
        // Numbers often begin with a letter: that is out of place only where no check digit tells it from its digit. A
        // reader that knows how certain it is tells by itself what is in doubt, but there even it is not believed.
        if (cell.isCertaintyKnown() ? cell.isMisplaced && isSameWeight : i > 0 || isSameWeight)
            cell.rivals += digits;
    }

    /// Digits among digits are what they are; a digit where the letters of a number may still go on is one only if
    /// check digits say so.
    void addRivalsOfDigit(MrzCell& cell, char16_t before, char16_t after, bool isNumber)
    {
        const bool isAmongLetters
            = !isMrzDigit(before) && !isMrzDigit(after) && (isMrzLetter(before) || isMrzLetter(after));
        const bool isBesideLetters = isNumber && (!isMrzDigit(before) || isMrzLetter(after));
        for (const QChar letter : lookAlikes(cell.taken, MrzKind::Letter)) {
            if (m_result.shapes.absentLetters.contains(letter))
                continue;
            if (isAmongLetters || (isBesideLetters && weighTheSame(cell.taken, letter.unicode()) && cell.taken != u'1'))
                cell.rivals += letter;
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

} // namespace

MrzFitting fitMrzZone(const MrzFormat& format, MrzZone& zone)
{
    return Fitter(format, zone).fit();
}

} // namespace kelvara
