#include "Platform/Foundation/DateFormatter.h"

#include <QLocale>

namespace kelvara {

void DateFormatter::setTimeZone(std::optional<QTimeZone> zone)
{
    m_zone = std::move(zone);
}

void DateFormatter::setDateFormat(QString format)
{
    m_format = std::move(format);
}

QString DateFormatter::string(const QDateTime& date) const
{
    return QLocale().toString(m_zone ? date.toTimeZone(*m_zone) : date.toLocalTime(), m_format);
}

std::optional<QDateTime> DateFormatter::date(const QString& text) const
{
    const QLocale locale;
    // A pattern of days only is read as a day: read as a moment it would first be one of the device's zone, and where
    // clocks were put forward at midnight that day has no 00:00.
    if (const QDate day = locale.toDate(text, m_format); day.isValid())
        return m_zone ? day.startOfDay(*m_zone) : day.startOfDay();
    QDateTime parsed = locale.toDateTime(text, m_format);
    if (!parsed.isValid())
        return std::nullopt;
    if (m_zone)
        parsed = QDateTime(parsed.date(), parsed.time(), *m_zone);
    return parsed;
}

} // namespace kelvara
