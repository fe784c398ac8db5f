#include "Kelvara/DateText.h"

#include <QLocale>

#include <mutex>

namespace kelvara {

namespace {

struct Choice
{
    std::mutex mutex;
    QCalendar calendar;
};

Choice& choice()
{
    static Choice made;
    return made;
}

} // namespace

QCalendar deviceCalendar()
{
    const std::lock_guard lock(choice().mutex);
    return choice().calendar;
}

void setDeviceCalendar(const QCalendar& calendar)
{
    const std::lock_guard lock(choice().mutex);
    choice().calendar = calendar;
}

QString toString(const QDate& date, const QString& format)
{
    return QLocale().toString(date, format, deviceCalendar());
}

} // namespace kelvara
