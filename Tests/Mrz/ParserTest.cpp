#include "Platform/Mrz/QKMRZParser.h"

#include <QLocale>

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace kelvara {

namespace {

QStringList lines(const char* text)
{
    return QString::fromUtf8(text).split(u'\n');
}

QKMRZParser parser(bool ocrCorrection = true)
{
    QKMRZParser made(ocrCorrection);
    made.setToday([] { return QDate(2026, 6, 1); });
    return made;
}

constexpr const char* turkish
    = "I<TURA12B345675<10000000146<<<\n8508096M3011238TUR<<<<<<<<<<<2\nYILMAZ<<AYSE<NUR<<<<<<<<<<<<<<";
constexpr const char* passport
    = "P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<\nL898902C36UTO7408122F1204159ZE184226B<<<<<10";

/// The zone with some characters exchanged for others of the same number.
QStringList with(const char* zone, const char* part, const char* by)
{
    QString text = QString::fromLatin1(zone);
    EXPECT_EQ(text.count(QLatin1String(part)), 1) << part;
    return text.replace(QLatin1String(part), QLatin1String(by)).split(u'\n');
}

struct Published
{
    MrzDocumentFormat format;
    const char* zone;
    const char* type;
    const char* surnames;
    const char* givenNames;
    const char* number;
    const char* nationality;
    QDate birth;
    const char* sex;
    QDate expiry;
    const char* personal;
};

TEST(Parser, ReadsThePublishedExamples)
{
    const Published rows[] = {
        { MrzDocumentFormat::TD1,
            "I<UTOD231458907<<<<<<<<<<<<<<<\n7408122F1204159UTO<<<<<<<<<<<6\nERIKSSON<<ANNA<MARIA<<<<<<<<<<", "I",
            "ERIKSSON", "ANNA MARIA", "D23145890", "UTO", QDate(1974, 8, 12), "F", QDate(2012, 4, 15), "" },
        { MrzDocumentFormat::TD1,
            "I<UTOD23145890<7349<<<<<<<<<<<\n3407127M9507122UTO<<<<<<<<<<<2\nSTEVENSON<<PETER<JOHN<<<<<<<<<", "I",
            "STEVENSON", "PETER JOHN", "D23145890734", "UTO", QDate(1934, 7, 12), "M", QDate(1995, 7, 12), "" },
        { MrzDocumentFormat::TD2, "I<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<\nD231458907UTO7408122F1204159<<<<<<<6", "I",
            "ERIKSSON", "ANNA MARIA", "D23145890", "UTO", QDate(1974, 8, 12), "F", QDate(2012, 4, 15), "" },
        { MrzDocumentFormat::TD2, "I<UTOSTEVENSON<<PETER<JOHN<<<<<<<<<<\nD23145890<UTO3407127M95071227349<<<8", "I",
            "STEVENSON", "PETER JOHN", "D23145890734", "UTO", QDate(1934, 7, 12), "M", QDate(1995, 7, 12), "" },
        { MrzDocumentFormat::TD3, passport, "P", "ERIKSSON", "ANNA MARIA", "L898902C3", "UTO", QDate(1974, 8, 12), "F",
            QDate(2012, 4, 15), "ZE184226B" },
        { MrzDocumentFormat::MRVA,
            "V<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<\nL8988901C4XXX4009078F96121096ZE184226B<<<<<<", "V",
            "ERIKSSON", "ANNA MARIA", "L8988901C", "XXX", QDate(1940, 9, 7), "F", QDate(1996, 12, 10), "6ZE184226B" },
        { MrzDocumentFormat::MRVB, "V<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<\nL8988901C4XXX4009078F9612109<<<<<<<<", "V",
            "ERIKSSON", "ANNA MARIA", "L8988901C", "XXX", QDate(1940, 9, 7), "F", QDate(1996, 12, 10), "" },
        { MrzDocumentFormat::TD1, turkish, "I", "YILMAZ", "AYSE NUR", "A12B34567", "TUR", QDate(1985, 8, 9), "M",
            QDate(2030, 11, 23), "10000000146" },
    };
    for (const Published& row : rows) {
        for (const bool ocrCorrection : { false, true }) {
            SCOPED_TRACE(row.zone);
            const auto result = parser(ocrCorrection).parse(lines(row.zone));
            ASSERT_TRUE(result);
            EXPECT_TRUE(result->allCheckDigitsValid);
            EXPECT_TRUE(result->marks.empty());
            EXPECT_EQ(result->format, row.format);
            EXPECT_EQ(result->documentType, QLatin1String(row.type));
            EXPECT_EQ(result->countryCode, row.zone == turkish ? u"TUR" : u"UTO");
            EXPECT_EQ(result->surnames, QLatin1String(row.surnames));
            EXPECT_EQ(result->givenNames, QLatin1String(row.givenNames));
            EXPECT_EQ(result->documentNumber, QLatin1String(row.number));
            EXPECT_EQ(result->nationality, QLatin1String(row.nationality));
            EXPECT_EQ(result->birthDate, row.birth);
            EXPECT_EQ(result->sex, QString::fromLatin1(row.sex));
            EXPECT_EQ(result->expiryDate, row.expiry);
            EXPECT_EQ(result->personalNumber, QLatin1String(row.personal));
            EXPECT_EQ(result->personalNumber2.has_value(), row.format == MrzDocumentFormat::TD1);
            EXPECT_EQ(result->isPersonalNumberValid.has_value(), row.format == MrzDocumentFormat::TD3);
            EXPECT_EQ(result->isFinalCheckDigitValid.has_value(), row.format <= MrzDocumentFormat::TD3);
        }
    }
}

TEST(Parser, SplitsNames)
{
    struct Row
    {
        const char* field;
        const char* surnames;
        const char* givenNames;
    };
    const Row rows[] = {
        { "NILAVADHANANANDA<<CHAYAPA<DEJTHAMRONG<K", "NILAVADHANANANDA", "CHAYAPA DEJTHAMRONG K" }, // Cut off.
        { "ARKFREITH<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<", "ARKFREITH", "" },
        { "VAN<DER<MUELLEN<<ANNA<K<MARIA<<<<<<<<<<", "VAN DER MUELLEN", "ANNA K MARIA" },
        { "ERIKSSON<<ANNA<MARIA<<<K<<<<K<<KK<<<<<<", "ERIKSSON", "ANNA MARIA" }, // Fillers read as letters.
        { "ERIK550N<<4NNA<MAR1A<<<<<<<<<<<<<<<<<<<", "ERIKSSON", "ANNA MARIA" },
        { "<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<", "", "" },
    };
    for (const Row& row : rows) {
        const auto result = parser().parse({ QStringLiteral("P<UTO") + QLatin1String(row.field), lines(passport)[1] });
        ASSERT_TRUE(result) << row.field;
        EXPECT_EQ(result->surnames, QLatin1String(row.surnames));
        EXPECT_EQ(result->givenNames, QLatin1String(row.givenNames));
    }
}

QString checked(const QString& digits)
{
    int sum = 0;
    for (int i = 0; i < digits.size(); ++i)
        sum += digits[i].digitValue() * (i % 3 == 0 ? 7 : i % 3 == 1 ? 3 : 1);
    return digits + QChar(u'0' + sum % 10);
}

TEST(Parser, PlacesYearsAroundThePresent)
{
    struct Row
    {
        const char* digits;
        QDate today;
        std::optional<QDate> birth;
        std::optional<QDate> expiry;
    };
    const QDate now(2026, 6, 1);
    const Row rows[] = {
        { "260601", now, QDate(2026, 6, 1), QDate(2026, 6, 1) },
        { "260602", now, QDate(1926, 6, 2), QDate(2026, 6, 2) }, // Nobody is born tomorrow.
        { "000229", now, QDate(2000, 2, 29), QDate(2000, 2, 29) },
        { "750101", now, QDate(1975, 1, 1), QDate(2075, 1, 1) },
        { "770101", now, QDate(1977, 1, 1), QDate(1977, 1, 1) },
        { "050101", QDate(2098, 1, 1), QDate(2005, 1, 1), QDate(2105, 1, 1) },
        { "230229", now, std::nullopt, std::nullopt },
        { "851301", now, std::nullopt, std::nullopt },
        { "850000", now, std::nullopt, std::nullopt },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.digits);
        QKMRZParser made;
        made.setToday([&row] { return row.today; });
        const QString date = checked(QLatin1String(row.digits));
        const auto result = made.parse({ QStringLiteral("V<UTOERIKSSON<<ANNA<<<<<<<<<<<<<<<<<"),
            QStringLiteral("L8988901C4XXX") + date + u'F' + date + QStringLiteral("<<<<<<<<") });
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->isBirthDateValid && result->isExpiryDateValid);
        EXPECT_EQ(result->birthDate, row.birth);
        EXPECT_EQ(result->expiryDate, row.expiry);
        EXPECT_EQ(result->allCheckDigitsValid, row.birth.has_value());
    }
}

TEST(Parser, AsksTheDeviceWhenNobodySaysWhatDayItIs)
{
    QKMRZParser made;
    made.setToday([] { return QDate(1999, 1, 1); });
    made.setToday({});
    const auto result = made.parse(lines(turkish));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->birthDate, parser().parse(lines(turkish))->birthDate);
    EXPECT_TRUE(result->expiryDate);
}

TEST(Parser, TakesSexAsItStands)
{
    for (const auto& [printed, sex] :
        { std::pair("6M3", "M"), { "6F3", "F" }, { "6X3", "X" }, { "6<3", "" }, { "673", "" } }) {
        const auto result = parser().parse(with(turkish, "6M3", printed));
        ASSERT_TRUE(result);
        EXPECT_EQ(result->sex.value_or(QString()), QLatin1String(sex));
        EXPECT_TRUE(result->allCheckDigitsValid);
    }
}

TEST(Parser, CorrectsWhatOnlyOneCharacterCanBe)
{
    struct Row
    {
        const char* zone;
        const char* part;
        const char* read;
    };
    const Row rows[] = {
        { turkish, "A12B34567", "AI2B3A567" },
        { turkish, "A12B34567", "A1ZB34S67" },
        { turkish, "A12B34567", "A12834567" },
        { turkish, "850809", "8S0BO9" },
        { turkish, "TUR<<<<", "7UR<<K<" },
        { turkish, "TURA12", "TORA12" },
        { turkish, "I<TURA", "1KTURA" },
        { turkish, "<10000000146<<<", "K1O0O0000146K<<" },
        { turkish, "<2\nY", "<Z\nY" },
        { passport, "UTO740812", "U7O74O8I2" },
        { passport, "C36UTO", "C3GUTO" },
        { passport, "8902C3", "89O2C3" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.read);
        const auto right = parser().parse(lines(row.zone));
        const auto result = parser().parse(with(row.zone, row.part, row.read));
        ASSERT_TRUE(right && result);
        EXPECT_TRUE(result->allCheckDigitsValid);
        EXPECT_FALSE(result->marks.empty());
        EXPECT_EQ(result->documentNumber, right->documentNumber);
        EXPECT_EQ(result->birthDate, right->birthDate);
        EXPECT_EQ(result->personalNumber, right->personalNumber);
        EXPECT_EQ(result->nationality, right->nationality);
        const auto plain = parser(false).parse(with(row.zone, row.part, row.read));
        EXPECT_TRUE(!plain || !plain->allCheckDigitsValid || plain->nationality != right->nationality
            || plain->documentType != right->documentType || plain->countryCode != right->countryCode
            || plain->personalNumber2 != right->personalNumber2 || plain->personalNumber != right->personalNumber);
    }
}

/// Every check digit comes out right on these, or can be made to, and yet they must not be vouched for.
TEST(Parser, DoesNotVouchForWhatOnlyCheckDigitsSay)
{
    struct Row
    {
        const char* zone;
        const char* part;
        const char* read;
    };
    const Row rows[] = {
        { turkish, "A12B34567", "<12B34567" }, // A filler for a letter of the same weight.
        { turkish, "A12B34567", "A12B34367" }, // A digit for a digit.
        { turkish, "<10000000146", "<10000000147" }, // An identity number with wrong check digits of its own.
        { turkish, "I<TUR", "I<QQQ" }, // No state.
        { passport, "L898902C3", "L89<9O2C3" }, // A filler inside.
        { passport, "ZE184226B<<<<<", "ZE184226BK<<<<" }, // K weighs as little as a filler.
        { passport, "ZE184226B<<<<<", "ZE184226B<<K<<" },
        { passport, "ZE184226B", "ZE184<26B" }, // ... with a check digit that would have to be invented.
        { passport, "ZE184226B", "ZE18422GB" }, // G weighs the same as 6.
        { passport, "7408122", "7408172" }, // Two digits at once.
        { passport, "1204159", "1213159" }, // No such month.
    };
    for (const Row& row : rows) {
        const auto result = parser().parse(with(row.zone, row.part, row.read));
        EXPECT_TRUE(!result || !result->allCheckDigitsValid) << row.read;
    }
}

std::vector<MrzLineReading> certain(const QStringList& text)
{
    std::vector<MrzLineReading> read;
    for (const QString& line : text)
        read.push_back({ line, std::vector(static_cast<std::size_t>(line.size()), 0.99F), {} });
    return read;
}

TEST(Parser, BelievesAnEngineThatIsCertain)
{
    // K at the end of a field is out of place, but here it is what was seen.
    const QStringList zone = with(passport, "ZE184226B<<<<<1", "ZE184226BA<<<<1");
    EXPECT_TRUE(parser().parse(certain(zone))->allCheckDigitsValid);
    // Letters of one weight: A and K. Doubt, with or without saying between what, is enough to wait for another frame.
    auto read = certain(lines(turkish));
    EXPECT_TRUE(parser().parse(read)->allCheckDigitsValid);
    read[0].certainties[5] = 0.6F;
    const auto doubted = parser().parse(read);
    EXPECT_FALSE(doubted->allCheckDigitsValid);
    EXPECT_TRUE(doubted->isDocumentNumberValid && *doubted->isFinalCheckDigitValid);
    EXPECT_TRUE(std::ranges::any_of(doubted->marks, [](const MrzMark& mark) {
        return mark.kind == MrzMark::Kind::Ambiguous && mark.line == 0 && mark.column == 5;
    }));
    // Its doubt is between letters that check digits tell apart.
    read[0].alternatives.assign(6, QString());
    read[0].alternatives[5] = QStringLiteral("HR");
    EXPECT_TRUE(parser().parse(read)->allCheckDigitsValid);
}

TEST(Parser, WaitsForANameThatWasRead)
{
    struct Row
    {
        std::size_t column;
        bool isValid;
    };
    // YILMAZ<<AYSE<NUR<<<: within the names, the filler that ends them, and what follows.
    for (const Row& row :
        { Row { 0, false }, { 3, false }, { 6, false }, { 15, false }, { 16, false }, { 17, true }, { 29, true } }) {
        auto read = certain(lines(turkish));
        read[2].certainties[row.column] = 0.1F;
        const auto result = parser().parse(read);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->allCheckDigitsValid, row.isValid) << row.column;
        EXPECT_EQ(result->surnames, u"YILMAZ");
        read[2].certainties[row.column] = 0.6F;
        EXPECT_TRUE(parser().parse(read)->allCheckDigitsValid);
    }
}

TEST(Parser, CheckDigitsDecideWhereTheEngineDoubts)
{
    auto read = certain(with(turkish, "A12B34567", "A12B34367"));
    EXPECT_FALSE(parser().parse(read)->allCheckDigitsValid);
    read[0].certainties[11] = 0.5F;
    read[0].alternatives.assign(12, QString());
    read[0].alternatives[11] = QStringLiteral("5");
    const auto result = parser().parse(read);
    EXPECT_EQ(result->documentNumber, u"A12B34567");
    ASSERT_FALSE(result->marks.empty());
    EXPECT_EQ(result->marks.front().kind, MrzMark::Kind::CorrectedByCheckDigit);
    EXPECT_EQ(result->marks.front().column, 11);
    // Two doubtful digits can make up for each other.
    read[0].certainties[10] = 0.5F;
    read[0].alternatives.clear();
    EXPECT_FALSE(parser().parse(read)->allCheckDigitsValid);
}

TEST(Parser, FindsTheZoneAmongOtherLinesAndMendsLengths)
{
    const QStringList zone = lines(turkish);
    const QString stray = QStringLiteral("T.C.KIMLIK<KARTI<IDENTITY<CAR");
    QStringList rows[] = { zone, zone, zone, zone, zone, zone, zone, zone };
    rows[0].prepend(stray);
    rows[1] += { stray, stray };
    rows[2][1].remove(20, 1); // A filler lost in a run,
    rows[3][1].insert(20, u'<'); // or doubled,
    rows[4][0].remove(1, 1); // or lost altogether,
    rows[5][0].remove(15, 1);
    rows[6][2].chop(2);
    rows[7][2] += u'<';
    for (const QStringList& row : rows) {
        const auto result = parser().parse(row);
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->allCheckDigitsValid) << row.join(u'\n').toStdString();
        EXPECT_EQ(result->documentNumber, u"A12B34567");
        EXPECT_EQ(result->personalNumber, u"10000000146");
        EXPECT_EQ(result->surnames, u"YILMAZ");
    }
    // A digit lost is not a filler lost.
    for (const int column : { 7, 12, 18, 25 }) {
        QStringList torn = zone;
        torn[0].remove(column, 1);
        const auto result = parser().parse(torn);
        EXPECT_TRUE(!result || !result->allCheckDigitsValid) << column;
    }
    QStringList torn = zone;
    torn[1].remove(2, 1);
    const auto result = parser().parse(torn);
    EXPECT_TRUE(!result || !result->allCheckDigitsValid);
}

TEST(Parser, MakesNothingOfWhatIsNoZone)
{
    const QStringList none[] = { {}, { QString() }, { QString(30, u'<') }, QStringList(3, QString(30, u'<')),
        QStringList(2, QString(44, u'A')), QStringList(3, QString(30, u'0')), QStringList(100, QString(36, u'Z')),
        QStringList(3, QString(100000, u'I')), QStringList(3, QString(30, QChar(0xd800))),
        QStringList(3, QString(30, QChar(0))) };
    for (const QStringList& text : none) {
        for (const bool ocrCorrection : { false, true }) {
            const auto result = parser(ocrCorrection).parse(text);
            EXPECT_TRUE(!result || !result->allCheckDigitsValid);
        }
    }
    // Lists of doubts that are longer than the text, and figures that are none.
    const MrzLineReading odd { QString(30, u'8'), std::vector(99, std::numeric_limits<float>::quiet_NaN()),
        std::vector(99, QString(50, u'B')) };
    const auto result = parser().parse({ odd, odd, odd });
    EXPECT_TRUE(!result || !result->allCheckDigitsValid);
}

} // namespace
} // namespace kelvara
