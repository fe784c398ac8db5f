#include "Kelvara/IDCardUtil.h"
#include "Kelvara/DateText.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Mrz/QKMRZParser.h"

#include <QLocale>

#include <ctime>
#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

TEST(IDCardUtil, WeighsCharactersAsTheZoneDoes)
{
    struct Row
    {
        const char* text;
        int sum;
    };
    const Row rows[] = { { "L898902C3", 6 }, { "740812", 2 }, { "120415", 9 }, { "AB<12", 6 }, { "AB 12", 6 },
        { "a12", 0 }, { "", 0 }, { "12\xc4\xb0", 0 },
        { "\xc4\xb0"
          "12",
            0 },
        { "1-2", 0 }, { "Z", 5 }, { "\xd9\xa7\xd9\xa4", 0 } };
    const IDCardUtil card(UserDefaults::inMemory());
    for (const Row& row : rows)
        EXPECT_EQ(card.calcCheckSum(QString::fromUtf8(row.text)), row.sum) << row.text;
}

TEST(IDCardUtil, MakesTheKeyOfWhatItHolds)
{
    struct Row
    {
        const char* number;
        const char* birth;
        const char* expiry;
        const char* key;
        bool isValid;
    };
    const Row rows[] = {
        { "", "", "", "000", false },
        { "L898902C3", "740812", "120415", "L898902C3674081221204159", true },
        { "a12b34567", "740812", "120415", "a12b34567074081221204159", true }, // Lower case goes into the key.
        { "D23145890734", "340712", "950712", "D23145890734934071279507122", true }, // Long numbers are used whole.
        { "L898902", "740812", "120415", "L898902774081221204159", false },
        { "L898902C", "74081", "120415", "L898902C37408101204159", false },
        { "L898902C", "abcdef", "120415", "L898902C3abcdef01204159", true },
        // Four letters with accents of their own are four characters.
        { "e\xcc\x81"
          "e\xcc\x81"
          "e\xcc\x81"
          "e\xcc\x81",
            "740812", "120415",
            "e\xcc\x81"
            "e\xcc\x81"
            "e\xcc\x81"
            "e\xcc\x81"
            "0"
            "74081221204159",
            false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.key);
        const auto defaults = UserDefaults::inMemory();
        IDCardUtil card(defaults);
        EXPECT_EQ(card.getMRZKey(), u"000");
        card.setPassportNumber(QString::fromUtf8(row.number));
        card.setDateOfBirth(QString::fromUtf8(row.birth));
        card.setExpiryDate(QString::fromUtf8(row.expiry));
        EXPECT_EQ(card.isValid(), row.isValid);
        EXPECT_EQ(card.getMRZKey(), QString::fromUtf8(row.key));
        const IDCardUtil next(defaults);
        EXPECT_EQ(next.passportNumber(), card.passportNumber());
        EXPECT_EQ(next.dateOfBirth(), card.dateOfBirth());
        EXPECT_EQ(next.expiryDate(), card.expiryDate());
        EXPECT_EQ(next.passport(), nullptr);
    }
}

TEST(IDCardUtil, WorksThroughItsAccessorsAndWithoutAStore)
{
    class Padded final : public IDCardUtil
    {
    public:
        using IDCardUtil::IDCardUtil;
        QString passportNumber() const override { return IDCardUtil::passportNumber().leftJustified(9, u'<'); }
    };
    const auto defaults = UserDefaults::inMemory();
    Padded card(defaults);
    card.setPassportNumber(QStringLiteral("L898902"));
    EXPECT_EQ(card.getMRZKey().left(10), u"L898902<<7");
    EXPECT_EQ(defaults->string(QStringLiteral("passportNumber")), QStringLiteral("L898902<<"));

    IDCardUtil forgetful(std::shared_ptr<UserDefaults> {});
    EXPECT_EQ(forgetful.getMRZKey(), u"000");
}

/// The device's locale, calendar and zone for one test.
class Device
{
public:
    ~Device()
    {
        QLocale::setDefault(QLocale::system());
        setDeviceCalendar(QCalendar());
        useZone(m_zone.isNull() ? "UTC" : m_zone.constData());
    }
    static void useZone(const char* zone)
    {
        qputenv("TZ", zone);
        tzset();
    }

private:
    const QByteArray m_zone = qgetenv("TZ");
};

QKMRZResult zoneWith(const char* birth, const char* expiry)
{
    const IDCardUtil sums(nullptr);
    const auto checked = [&](const char* digits) {
        return QLatin1String(digits) + QString::number(sums.calcCheckSum(QLatin1String(digits)));
    };
    QKMRZParser parser;
    parser.setToday([] { return QDate(2026, 6, 1); });
    const auto result = parser.parse(QStringList { QStringLiteral("V<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<"),
        QStringLiteral("L8988901C4XXX") + checked(birth) + u'F' + checked(expiry) + QStringLiteral("<<<<<<<<") });
    return result.value_or(QKMRZResult());
}

TEST(DateText, GivesBackTheZonesDigitsInEveryTimeZone)
{
    const Device device;
    QLocale::setDefault(QLocale(QStringLiteral("tr_TR")));
    // POSIX counts the other way round. Apia had no 30 December 2011, São Paulo no midnight on 4 November 2018.
    for (const char* zone :
        { "<-12>12", "UTC", "<+03>-3", "<+14>-14", "Pacific/Apia", "America/Sao_Paulo", "Europe/Istanbul" }) {
        Device::useZone(zone);
        for (const char* digits : { "000101", "111230", "181104", "850331", "000229", "991231" }) {
            const QKMRZResult result = zoneWith(digits, digits);
            ASSERT_TRUE(result.allCheckDigitsValid) << digits;
            // Parsed in one zone and written in another, as on a journey.
            for (const char* later : { zone, "<+14>-14", "<-12>12" }) {
                Device::useZone(later);
                EXPECT_EQ(toString(*result.birthDate), QLatin1String(digits)) << zone << later;
                EXPECT_EQ(toString(*result.expiryDate), QLatin1String(digits)) << zone << later;
            }
            Device::useZone(zone);
        }
    }
}

TEST(DateText, DigitsAndCalendarAreTheDevices)
{
    const Device device;
    const QDate date(1974, 8, 12);
    QLocale::setDefault(QLocale(QStringLiteral("ar_EG")));
    EXPECT_EQ(toString(date), QString::fromUtf8("٧٤٠٨١٢"));
    // Such digits are not in the table: the key keeps them, with check digits that are silently 0. It opens no chip.
    IDCardUtil card(UserDefaults::inMemory());
    card.setPassportNumber(QStringLiteral("L898902C3"));
    card.setDateOfBirth(toString(date));
    card.setExpiryDate(toString(QDate(2012, 4, 15)));
    EXPECT_TRUE(card.isValid());
    EXPECT_EQ(card.getMRZKey(), QString::fromUtf8("L898902C36٧٤٠٨١٢0١٢٠٤١٥0"));

    QLocale::setDefault(QLocale(QStringLiteral("ar_AE")));
    EXPECT_EQ(toString(date), u"740812");
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(toString(date, QStringLiteral("d MMM yyyy")), u"12 Aug 1974");
    setDeviceCalendar(QCalendar(QCalendar::System::Jalali));
    EXPECT_EQ(toString(date), u"530521");
}

} // namespace
} // namespace kelvara::test
