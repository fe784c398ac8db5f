#include "Kelvara/Utility.h"

#include <QLocale>
#include <QScopeGuard>
#include <QTimeZone>

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(Utility, DatesAreReadAndWrittenInGmtAndTheDevicesLanguage)
{
    struct Row
    {
        const char* locale;
        const char* read;
        QDate date;
        const char* written;
    };
    const Row rows[] = {
        { "en_US", "3 Mar 2021", { 2021, 3, 3 }, "3 Mar, 2021" },
        { "en_US", "29 Feb 2024", { 2024, 2, 29 }, "29 Feb, 2024" },
        { "tr_TR", "15 Eyl 1980", { 1980, 9, 15 }, "15 Eyl, 1980" },
    };
    const auto restored = qScopeGuard([] { QLocale::setDefault(QLocale::system()); });
    for (const Row& row : rows) {
        QLocale::setDefault(QLocale(QLatin1String(row.locale)));
        EXPECT_EQ(Utility::getDate(QLatin1String(row.read)), QDateTime(row.date, QTime(0, 0), Qt::UTC)) << row.read;
        // The first and the last moment of the day, as clocks far from Greenwich show them.
        for (const auto& [time, hours] : { std::pair(QTime(0, 0), -12), std::pair(QTime(23, 59, 59), 14) }) {
            const QDateTime moment = QDateTime(row.date, time, Qt::UTC).toTimeZone(QTimeZone(hours * 3600));
            EXPECT_EQ(Utility::getString(moment), QLatin1String(row.written)) << hours;
        }
    }
}

TEST(Utility, WhatIsNoDateIsNow)
{
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    const auto restored = qScopeGuard([] { QLocale::setDefault(QLocale::system()); });
    const QString written = Utility::getString(QDateTime(QDate(2021, 3, 3), QTime(9, 0), Qt::UTC));
    for (const QString& text : { QString(), QStringLiteral("2021-03-03"), QStringLiteral("31 Apr 2021"), written }) {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const QDateTime date = Utility::getDate(text);
        EXPECT_TRUE(before <= date && date <= QDateTime::currentDateTimeUtc()) << text.toStdString();
    }
}

} // namespace
} // namespace kelvara
