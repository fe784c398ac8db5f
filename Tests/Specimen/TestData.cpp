#include "Tools/Specimen/Specimen.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace kelvara::specimen {

namespace {

/// Check digit as the standard words it, written apart from the printer's own.
int checkDigit(const QString& field)
{
    static const QString values = QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    int sum = 0;
    for (int i = 0; i < field.size(); ++i) {
        const int value = field[i] == u'<' ? 0 : static_cast<int>(values.indexOf(field[i]));
        EXPECT_GE(value, 0) << "not an MRZ character in " << field.toStdString();
        sum += value * (i % 3 == 0 ? 7 : i % 3 == 1 ? 3 : 1);
    }
    return sum % 10;
}

int digit(const QString& text, int at)
{
    return text.mid(at, 1).toInt();
}

TEST(Data, CheckDigitsOfThePublishedExample)
{
    EXPECT_EQ(checkDigit(QStringLiteral("D23145890")), 7);
    EXPECT_EQ(checkDigit(QStringLiteral("740812")), 2);
    EXPECT_EQ(checkDigit(QStringLiteral("120415")), 9);
    EXPECT_EQ(checkDigit(QStringLiteral("D231458907<<<<<<<<<<<<<<<74081221204159<<<<<<<<<<<")), 6);

    SpecimenData data;
    data.nationality = QStringLiteral("UTO");
    data.surname = QStringLiteral("ERIKSSON");
    data.givenNames = QStringLiteral("ANNA MARIA");
    data.documentNumber = QStringLiteral("D23145890");
    data.sex = QStringLiteral("F");
    data.birthDate = QDate(1974, 8, 12);
    data.expiryDate = QDate(2012, 4, 15);
    EXPECT_EQ(data.mrzLines(),
        QStringList({ QStringLiteral("I<UTOD231458907<<<<<<<<<<<<<<<"),
            QStringLiteral("7408122F1204159UTO<<<<<<<<<<<6"), QStringLiteral("ERIKSSON<<ANNA<MARIA<<<<<<<<<<") }));
}

TEST(Data, EverySeedHasRightLinesAndNumbers)
{
    const QRegularExpression document(QStringLiteral("^[A-Z]\\d{2}[A-Z]\\d{5}$"));
    const QRegularExpression names(QStringLiteral("^[A-Z]+<<[A-Z]+(<[A-Z]+)?<*$"));
    for (std::uint32_t seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        const SpecimenData data = SpecimenData::fromSeed(seed);
        const QStringList lines = data.mrzLines();
        ASSERT_EQ(lines.size(), 3);
        for (const QString& line : lines)
            ASSERT_EQ(line.size(), 30) << line.toStdString();
        EXPECT_TRUE(document.match(data.documentNumber).hasMatch()) << data.documentNumber.toStdString();
        EXPECT_EQ(lines[0].left(14), QStringLiteral("I<TUR") + data.documentNumber);
        EXPECT_EQ(checkDigit(lines[0].mid(5, 9)), digit(lines[0], 14));
        EXPECT_EQ(lines[0].mid(15), u'<' + data.identityNumber + QStringLiteral("<<<"));
        EXPECT_EQ(checkDigit(lines[1].left(6)), digit(lines[1], 6));
        EXPECT_EQ(checkDigit(lines[1].mid(8, 6)), digit(lines[1], 14));
        EXPECT_EQ(lines[1].mid(7, 1), data.sex);
        const QString composite = lines[0].mid(5) + lines[1].left(7) + lines[1].mid(8, 7) + lines[1].mid(18, 11);
        EXPECT_EQ(checkDigit(composite), digit(lines[1], 29));
        EXPECT_TRUE(names.match(lines[2]).hasMatch()) << lines[2].toStdString();
        EXPECT_LT(data.birthDate, data.expiryDate);

        const QString id = data.identityNumber;
        ASSERT_EQ(id.size(), 11);
        EXPECT_NE(id[0], u'0');
        const int odd = digit(id, 0) + digit(id, 2) + digit(id, 4) + digit(id, 6) + digit(id, 8);
        const int even = digit(id, 1) + digit(id, 3) + digit(id, 5) + digit(id, 7);
        EXPECT_EQ((70 + odd * 7 - even) % 10, digit(id, 9)) << id.toStdString();
        EXPECT_EQ((odd + even + digit(id, 9)) % 10, digit(id, 10)) << id.toStdString();
    }
}

TEST(Data, TurkishLettersAndLongNamesFitTheLine)
{
    SpecimenData data = SpecimenData::fromSeed(1);
    data.surname = QStringLiteral("ÇĞİIÖŞÜÂ KAYA");
    data.givenNames = QStringLiteral("ABDÜLKADİR MUHAMMED ŞÜKRÜ");
    EXPECT_EQ(data.mrzLines()[2], QStringLiteral("CGIIOSUA<KAYA<<ABDULKADIR<MUHA"));
}

} // namespace

} // namespace kelvara::specimen
