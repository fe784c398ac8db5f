#include "Tools/Ocrb/BandText.h"

#include "Tools/Specimen/Dice.h"

#include <array>

namespace kelvara::ocrb {

namespace {

using specimen::Dice;

QString digits(Dice& dice, int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QChar(u'0' + dice.integer(0, 9));
    return text;
}

QString letters(Dice& dice, int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QChar(u'A' + dice.integer(0, 25));
    return text;
}

/// As documents are numbered: up to two letters, then digits.
QString number(Dice& dice, int count)
{
    const int prefix = dice.integer(0, 2);
    return letters(dice, prefix) + digits(dice, count - prefix);
}

QString checkDigit(const QString& text)
{
    constexpr std::array<int, 3> weights { 7, 3, 1 };
    int sum = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const int value = c == u'<' ? 0 : c <= u'9' ? c - u'0' : c - u'A' + 10;
        sum += value * weights[std::size_t(i % 3)];
    }
    return QString::number(sum % 10);
}

QString checked(const QString& text)
{
    return text + checkDigit(text);
}

QString date(Dice& dice, int firstYear, int lastYear)
{
    const auto two = [](int value) { return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0')); };
    const int year = dice.integer(firstYear, lastYear) % 100;
    const int month = dice.integer(1, 12);
    return two(year) + two(month) + two(dice.integer(1, 28));
}

QString name(Dice& dice)
{
    QString text = letters(dice, dice.integer(3, 10)) + QStringLiteral("<<") + letters(dice, dice.integer(3, 8));
    if (dice.chance(0.4))
        text += u'<' + letters(dice, dice.integer(3, 8));
    return text;
}

} // namespace

QStringList bandText(BandFormat format, std::uint32_t seed)
{
    Dice dice(seed, 0x6261); // "ba"
    static constexpr std::array kStates { u"TUR", u"TUR", u"TUR", u"UTO", u"FRA", u"GBR", u"USA", u"NLD", u"POL",
        u"SWE", u"BIH", u"JPN", u"KAZ", u"QAT", u"VNM", u"CYP", u"HRV", u"MEX", u"ZAF", u"IDN" };
    const QString state = QString::fromUtf16(dice.pick(std::span<const char16_t* const>(kStates)));
    const auto padded = [](const QString& text, int length) { return text.leftJustified(length, u'<', true); };
    const bool turkish = state == QStringLiteral("TUR") && format == BandFormat::TD1;
    const bool turkishPassport = state == QStringLiteral("TUR") && format == BandFormat::TD3;
    const QString documentNumber = turkishPassport ? letters(dice, 1) + digits(dice, 8)
        : turkish ? letters(dice, 1) + digits(dice, 2) + letters(dice, 1) + digits(dice, 5)
                  : padded(number(dice, dice.chance(0.85) ? 9 : 8), 9);
    const QString birth = checked(date(dice, 1940, 2005));
    const QString sex = dice.chance(0.5) ? QStringLiteral("M") : QStringLiteral("F");
    const QString expiry = checked(date(dice, 2027, 2036));
    const QString holder = name(dice);
    if (format == BandFormat::TD1) {
        QString personal = digits(dice, 9);
        if (personal.front() == u'0')
            personal.front() = u'7';
        int odd = 0;
        int even = 0;
        for (qsizetype i = 0; i < 9; ++i)
            (i % 2 ? even : odd) += personal[i].digitValue();
        const int tenth = ((7 * odd - even) % 10 + 10) % 10;
        personal += QString::number(tenth) + QString::number((odd + even + tenth) % 10);
        const QString optional = turkish ? u'<' + personal
            : dice.chance(0.5)           ? number(dice, dice.integer(5, 12))
                                         : QString();
        const QString first = QStringLiteral("I<") + state + checked(documentNumber) + padded(optional, 15);
        const QString second = birth + sex + expiry + state + QString(11, u'<');
        return { first, second + checkDigit(first.mid(5) + birth + expiry + second.mid(18)), padded(holder, 30) };
    }
    const int length = format == BandFormat::TD2 ? 36 : 44;
    const QString first = (format == BandFormat::TD2 ? QStringLiteral("I<") : QStringLiteral("P<")) + state;
    QString second = checked(documentNumber) + state + birth + sex + expiry;
    if (format == BandFormat::TD2)
        second += padded(dice.chance(0.5) ? number(dice, 6) : QString(), 7);
    else
        second += checked(padded(dice.chance(0.6) ? number(dice, dice.integer(6, 14)) : QString(), 14));
    second += checkDigit(second.left(10) + second.mid(13, 7) + second.mid(21));
    return { padded(first + holder, length), second };
}

QStringList evenText(std::uint32_t seed)
{
    const QString alphabet = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789<");
    Dice dice(seed, 0x6576); // "ev"
    QStringList lines;
    for (int l = 0; l < 3; ++l) {
        QString line;
        for (int c = 0; c < 30; ++c)
            line += alphabet[dice.integer(0, int(alphabet.size()) - 1)];
        lines << line;
    }
    return lines;
}

} // namespace kelvara::ocrb
