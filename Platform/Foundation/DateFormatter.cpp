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
    QDateTime parsed = QLocale().toDateTime(text, m_format);
    if (!parsed.isValid())
        return std::nullopt;
    if (m_zone)
        parsed = QDateTime(parsed.date(), parsed.time(), *m_zone);
    return parsed;
}

} // namespace kelvara
