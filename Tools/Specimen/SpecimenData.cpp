#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Specimen.h"

#include <QLocale>

#include <array>

namespace kelvara::specimen {

namespace {

constexpr std::array<const char16_t*, 36> surnames { u"YILMAZ", u"KAYA", u"DEMİR", u"ÇELİK", u"ŞAHİN", u"YILDIZ",
    u"ÖZTÜRK", u"AYDIN", u"ÖZDEMİR", u"ARSLAN", u"DOĞAN", u"KILIÇ", u"ASLAN", u"ÇETİN", u"KARA", u"KOÇ", u"KURT",
    u"ÖZKAN", u"ŞİMŞEK", u"POLAT", u"KORKMAZ", u"ÇAKIR", u"ERDOĞDU", u"GÜNEŞ", u"TAŞ", u"BULUT", u"IŞIK", u"YAVUZ",
    u"UÇAR", u"GÜLER", u"KÜÇÜKOĞLU", u"BÜYÜKÇEKMECELİ", u"SARIGÜL", u"TEKİN", u"DURMUŞ", u"AĞAÇ" };
constexpr std::array<const char16_t*, 22> womensNames { u"AYŞE", u"FATMA", u"ZEYNEP", u"ELİF", u"GÜLSÜM", u"ŞERİFE",
    u"ÖZLEM", u"IŞIL", u"ÇİĞDEM", u"NURGÜL", u"DERYA", u"PINAR", u"SİBEL", u"AYSU", u"DEFNE", u"İPEK", u"YAĞMUR",
    u"ÜLKÜ", u"NAZLI", u"MELİSA", u"HÜMEYRA", u"ASLI" };
constexpr std::array<const char16_t*, 22> mensNames { u"MEHMET", u"MUSTAFA", u"AHMET", u"ALİ", u"HÜSEYİN", u"HASAN",
    u"İBRAHİM", u"ÖMER", u"YUSUF", u"OĞUZ", u"ÇAĞRI", u"ŞÜKRÜ", u"IŞIN", u"UĞUR", u"ÜMİT", u"GÖKHAN", u"EMRE", u"TOLGA",
    u"BARIŞ", u"KEREM", u"YİĞİT", u"ABDÜLKADİR" };

QString name(Dice& dice, std::span<const char16_t* const> names)
{
    return QString::fromUtf16(dice.pick(names));
}

QString drawIdentityNumber(Dice& dice)
{
    std::array<int, 11> d {};
    d[0] = dice.integer(1, 9);
    for (std::size_t i = 1; i < 9; ++i)
        d[i] = dice.integer(0, 9);
    const int odd = d[0] + d[2] + d[4] + d[6] + d[8];
    const int even = d[1] + d[3] + d[5] + d[7];
    d[9] = ((odd * 7 - even) % 10 + 10) % 10;
    d[10] = (odd + even + d[9]) % 10;
    QString text;
    for (const int digit : d)
        text += QChar(u'0' + digit);
    return text;
}

QString drawDocumentNumber(Dice& dice)
{
    // I and O are left out, as issuers do, because they are read as digits.
    static const QString letters = QStringLiteral("ABCDEFGHJKLMNPRSTUVYZ");
    QString text;
    for (const QChar kind : QStringView(u"A99A99999")) {
        text += kind == u'A' ? letters[dice.integer(0, static_cast<int>(letters.size()) - 1)]
                             : QChar(u'0' + dice.integer(0, 9));
    }
    return text;
}

/// The letters A–Z and fillers that stand for a name (the plain base letters for Turkish ones).
QString transliterated(const QString& text)
{
    static const QString from = QStringLiteral("ÇĞİIÖŞÜÂÎÛ");
    static const QString to = QStringLiteral("CGIIOSUAIU");
    QString result;
    for (const QChar c : text) {
        const qsizetype at = from.indexOf(c);
        const QChar plain = at < 0 ? c : to[at];
        result += plain >= u'A' && plain <= u'Z' ? plain : QChar(u'<');
    }
    return result;
}

int characterValue(QChar c)
{
    if (c.isDigit())
        return c.digitValue();
    return c >= u'A' && c <= u'Z' ? c.unicode() - u'A' + 10 : 0;
}

QString withCheckDigit(const QString& field)
{
    constexpr std::array weights { 7, 3, 1 };
    int sum = 0;
    for (qsizetype i = 0; i < field.size(); ++i)
        sum += characterValue(field[i]) * weights[static_cast<std::size_t>(i % 3)];
    return field + QChar(u'0' + sum % 10);
}

QString mrzDate(const QDate& date)
{
    return QLocale::c().toString(date, QStringLiteral("yyMMdd"));
}

QString filled(const QString& text, qsizetype length)
{
    return text.leftJustified(length, u'<', true);
}

} // namespace

SpecimenData SpecimenData::fromSeed(std::uint32_t seed)
{
    Dice dice(seed, 0x5eed);
    SpecimenData data;
    data.seed = seed;
    const bool woman = dice.chance(0.5);
    data.sex = woman ? QStringLiteral("F") : QStringLiteral("M");
    data.surname = name(dice, surnames);
    const std::span<const char16_t* const> givenNames = woman ? std::span(womensNames) : std::span(mensNames);
    data.givenNames = name(dice, givenNames);
    if (dice.chance(0.35)) {
        const QString second = name(dice, givenNames);
        if (second != data.givenNames)
            data.givenNames += u' ' + second;
    }
    data.motherName = name(dice, womensNames);
    data.fatherName = name(dice, mensNames);
    data.documentNumber = drawDocumentNumber(dice);
    data.identityNumber = drawIdentityNumber(dice);
    data.birthDate = QDate(dice.integer(1950, 2006), dice.integer(1, 12), dice.integer(1, 28));
    data.expiryDate = QDate(dice.integer(2027, 2034), dice.integer(1, 12), dice.integer(1, 28));
    return data;
}

QStringList SpecimenData::mrzLines() const
{
    const QString document = withCheckDigit(filled(documentNumber, 9));
    const QString first = filled(QStringLiteral("I<") + nationality + document + u'<' + identityNumber, 30);
    const QString birth = withCheckDigit(mrzDate(birthDate));
    const QString expiry = withCheckDigit(mrzDate(expiryDate));
    const QString optional = filled(QString(), 11);
    const QString composite = withCheckDigit(first.mid(5) + birth + expiry + optional).right(1);
    const QString second = birth + sex + expiry + nationality + optional + composite;
    const QString third = filled(transliterated(surname) + QStringLiteral("<<") + transliterated(givenNames), 30);
    return { first, second, third };
}

} // namespace kelvara::specimen
