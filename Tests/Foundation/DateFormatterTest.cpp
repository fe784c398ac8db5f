#include "Platform/Foundation/DateFormatter.h"

#include <QLocale>

#include <ctime>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// The device's locale and time zone for one test.
class Device
{
public:
    explicit Device(const char* locale, const char* zone = "UTC")
    {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        useZone(zone);
    }
    ~Device()
    {
        QLocale::setDefault(QLocale::system());
        useZone(m_zone.constData());
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

private:
    static void useZone(const char* zone)
    {
        qputenv("TZ", zone);
        tzset();
    }

    const QByteArray m_zone = qgetenv("TZ");
};

DateFormatter formatter(const char* format, const char* zone = nullptr)
{
    DateFormatter made;
    made.setTimeZone(zone ? std::optional(QTimeZone(zone)) : std::nullopt);
    made.setDateFormat(QLatin1String(format));
    return made;
}

TEST(DateFormatter, WritesInTheDevicesLanguageAndTheFormattersZone)
{
    struct Row
    {
        const char* locale;
        const char* zone;
        const char* format;
        const char* text;
    };
    const QDateTime moment(QDate(1985, 8, 9), QTime(22, 30), Qt::UTC);
    const Row rows[] = {
        { "en_US", "GMT", "d MMM yyyy", "9 Aug 1985" },
        { "tr_TR", "GMT", "d MMM yyyy", "9 Ağu 1985" },
        { "en_US", "Asia/Tokyo", "d MMM, yyyy", "10 Aug, 1985" },
        { "en_US", nullptr, "yyMMdd", "850810" }, // the device's zone
        { "ar_EG", "GMT", "yyMMdd", "٨٥٠٨٠٩" },
    };
    for (const Row& row : rows) {
        const Device device(row.locale, "Europe/Istanbul");
        EXPECT_EQ(formatter(row.format, row.zone).string(moment), QString::fromUtf8(row.text));
    }
}

TEST(DateFormatter, ReadsExactlyThePattern)
{
    struct Row
    {
        const char* locale;
        const char* format;
        const char* text;
        const char* isoInGmt; // null: no date
    };
    const Row rows[] = {
        { "en_US", "d MMM yyyy", "3 Mar 2021", "2021-03-03T00:00:00Z" },
        { "tr_TR", "d MMM yyyy", "9 Ağu 1985", "1985-08-09T00:00:00Z" },
        { "en_US", "d MMM yyyy HH:mm", "3 Mar 2021 14:05", "2021-03-03T14:05:00Z" },
        // No midnight on these days in the device's zone, which must not matter.
        { "en_US", "d MMM yyyy", "4 Nov 2018", "2018-11-04T00:00:00Z" },
        { "en_US", "d MMM yyyy", "15 Oct 2017", "2017-10-15T00:00:00Z" },
        { "en_US", "d MMM yyyy", "2021-03-03", nullptr },
        { "en_US", "d MMM yyyy", "3 Mar, 2021", nullptr },
        { "en_US", "d MMM yyyy", "30 Feb 2021", nullptr },
        { "en_US", "d MMM yyyy", "9 Ağu 1985", nullptr },
        { "en_US", "d MMM yyyy", "3 Mar 2021 x", nullptr },
        { "en_US", "d MMM yyyy", "", nullptr },
    };
    for (const Row& row : rows) {
        const Device device(row.locale, "America/Sao_Paulo");
        const auto date = formatter(row.format, "GMT").date(QString::fromUtf8(row.text));
        ASSERT_EQ(date.has_value(), row.isoInGmt != nullptr) << row.text;
        if (date) {
            EXPECT_EQ(date->toUTC().toString(Qt::ISODate).toStdString(), row.isoInGmt) << row.text;
        }
    }
}

TEST(DateFormatter, WithoutAZoneReadsTheDevicesDay)
{
    const Device device("en_US", "Europe/Istanbul");
    const auto date = formatter("d MMM yyyy").date(QStringLiteral("3 Mar 2021"));
    ASSERT_TRUE(date);
    EXPECT_EQ(date->toUTC(), QDateTime(QDate(2021, 3, 2), QTime(21, 0), Qt::UTC));
}

} // namespace
} // namespace kelvara
