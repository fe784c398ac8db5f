#pragma once

#include <QCalendar>
#include <QDate>
#include <QString>

namespace kelvara {

/// The calendar in which dates become texts: that of Qt's locales, the Gregorian one, unless the host says what the
/// device shows its dates in (Qt does not know). Any thread.
[[nodiscard]] QCalendar deviceCalendar();
void setDeviceCalendar(const QCalendar& calendar);

/// The day by a pattern, in the device's current locale (`QLocale()`) and calendar; by default the six digits YYMMDD of
/// the machine-readable zone. A `QDate` is a day of the calendar and no moment, so the time zone never changes it. Any
/// thread.
///
/// Neither locale nor calendar are made uniform: where the device writes other digits (`QLocale("ar_EG")`: ٧٤٠٨١٢) or
/// counts other years, the text has these, and an access key made of it does not open a chip. A host that reads chips
/// there sets a locale with Western digits (`QLocale("ar_AE")`) and leaves the calendar alone.
[[nodiscard]] QString toString(const QDate& date, const QString& format = QStringLiteral("yyMMdd"));

} // namespace kelvara
