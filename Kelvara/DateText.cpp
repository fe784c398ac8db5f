#include "Kelvara/DateText.h"

#include <QLocale>

#include <mutex>

namespace kelvara {

namespace {

std::mutex calendarMutex;
QCalendar chosenCalendar;

} // namespace

QCalendar deviceCalendar()
{
    const std::lock_guard lock(calendarMutex);
    return chosenCalendar;
}

void setDeviceCalendar(const QCalendar& calendar)
{
    const std::lock_guard lock(calendarMutex);
    chosenCalendar = calendar;
}

QString toString(const QDate& date, const QString& format)
{
    return QLocale().toString(date, format, deviceCalendar());
}

} // namespace kelvara
