#include "Kelvara/Utility.h"

#include "Platform/Foundation/DateFormatter.h"

namespace kelvara {

namespace {

DateFormatter gmtFormatter(const QString& format)
{
    const QTimeZone gmt("GMT");
    DateFormatter formatter;
    formatter.setTimeZone(gmt.isValid() ? std::optional(gmt) : std::nullopt);
    formatter.setDateFormat(format);
    return formatter;
}

} // namespace

QDateTime Utility::getDate(const QString& from)
{
    return gmtFormatter(QStringLiteral("d MMM yyyy")).date(from).value_or(QDateTime::currentDateTimeUtc());
}

QString Utility::getString(const QDateTime& from)
{
    return gmtFormatter(QStringLiteral("d MMM, yyyy")).string(from);
}

} // namespace kelvara
