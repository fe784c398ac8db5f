#include "Platform/Mrz/MrzAlphabet.h"

#include "Platform/Mrz/MrzCheckDigit.h"

namespace kelvara {

namespace {

/// One digit each: where a check digit had to choose between several, it would no longer be a check.
QStringView digitsLike(char16_t character)
{
    switch (character) {
    case u'O':
    case u'D':
    case u'Q':
    case u'U':
        return u"0";
    case u'I':
    case u'L':
        return u"1";
    case u'Z':
        return u"2";
    case u'A':
        return u"4";
    case u'S':
        return u"5";
    case u'G':
        return u"6";
    case u'T':
        return u"7";
    case u'B':
        return u"8";
    default:
        return {};
    }
}

QStringView lettersLike(char16_t character)
{
    switch (character) {
    case u'0':
        return u"ODUQ";
    case u'1':
        return u"IL";
    case u'2':
        return u"Z";
    case u'4':
        return u"A";
    case u'5':
        return u"S";
    case u'6':
        return u"G";
    case u'7':
        return u"T";
    case u'8':
        return u"B";
    default:
        return {};
    }
}

/// A chevron loses a stroke or gains a stem.
QStringView fillersLike(char16_t character)
{
    switch (character) {
    case u'K':
    case u'C':
    case u'E':
    case u'L':
    case u'S':
    case u'X':
    case u'(':
    case u'{':
    case u'\u2039': // single angle quotation mark
        return u"<";
    default:
        return {};
    }
}

} // namespace

bool isMrzDigit(char16_t character)
{
    return character >= u'0' && character <= u'9';
}

bool isMrzLetter(char16_t character)
{
    return character >= u'A' && character <= u'Z';
}

bool fits(char16_t character, MrzKind kind)
{
    switch (kind) {
    case MrzKind::Any:
        return isMrzDigit(character) || isMrzLetter(character) || character == u'<';
    case MrzKind::Digit:
        return isMrzDigit(character);
    case MrzKind::DigitOrFiller:
        return isMrzDigit(character) || character == u'<';
    case MrzKind::Letter:
        return isMrzLetter(character);
    case MrzKind::LetterOrFiller:
        return isMrzLetter(character) || character == u'<';
    case MrzKind::Filler:
        return character == u'<';
    }
    return false;
}

MrzKind shapeKind(QChar kind)
{
    return kind == u'A' ? MrzKind::Letter : kind == u'9' ? MrzKind::Digit : MrzKind::Filler;
}

bool weighTheSame(char16_t a, char16_t b)
{
    return mrzCharacterValue(a) % 10 == mrzCharacterValue(b) % 10;
}

QStringView lookAlikes(char16_t character, MrzKind kind)
{
    switch (kind) {
    case MrzKind::Digit:
        return digitsLike(character);
    case MrzKind::DigitOrFiller:
        return digitsLike(character).isEmpty() ? fillersLike(character) : digitsLike(character);
    case MrzKind::Letter:
        return lettersLike(character);
    case MrzKind::LetterOrFiller:
        return isMrzDigit(character) ? lettersLike(character) : fillersLike(character);
    case MrzKind::Filler:
        return fillersLike(character);
    case MrzKind::Any:
        return isMrzLetter(character) || isMrzDigit(character) ? QStringView() : fillersLike(character);
    }
    return {};
}

QStringView doubtfulLookAlikes(char16_t character)
{
    switch (character) {
    case u'0':
        return u"OUDQ8";
    case u'1':
        return u"IL7";
    case u'2':
        return u"Z7";
    case u'3':
        return u"8B";
    case u'4':
        return u"A";
    case u'5':
        return u"S6";
    case u'6':
        return u"G58";
    case u'7':
        return u"T1";
    case u'8':
        return u"BS036";
    case u'9':
        return u"8";
    case u'<':
        return u"K";
    case u'A':
        return u"4";
    case u'B':
        return u"8";
    case u'C':
        return u"<GO";
    case u'D':
        return u"0O";
    case u'E':
        return u"F<";
    case u'F':
        return u"EP";
    case u'G':
        return u"6C";
    case u'H':
        return u"NM";
    case u'I':
        return u"1TL";
    case u'K':
        return u"<X";
    case u'L':
        return u"1I<";
    case u'M':
        return u"NHW";
    case u'N':
        return u"HM";
    case u'O':
        return u"0DQU";
    case u'P':
        return u"F";
    case u'Q':
        return u"O0";
    case u'S':
        return u"58";
    case u'T':
        return u"7I";
    case u'U':
        return u"0VO";
    case u'V':
        return u"UY";
    case u'W':
        return u"M";
    case u'X':
        return u"K";
    case u'Y':
        return u"V";
    case u'Z':
        return u"2";
    default:
        return {};
    }
}

} // namespace kelvara
