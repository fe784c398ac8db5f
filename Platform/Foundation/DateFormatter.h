#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <optional>

namespace kelvara {

/// Renders and parses dates by a pattern ("d MMM yyyy"), in the device's current locale (`QLocale()`), which an
/// application changes with `QLocale::setDefault`. Any thread.
class DateFormatter
{
public:
    /// The zone in which dates are read and written; absent: the device's own.
    void setTimeZone(std::optional<QTimeZone> zone);
    void setDateFormat(QString format);

    [[nodiscard]] QString string(const QDateTime& date) const;

    /// The moment that the text names; absent when the text does not match the pattern exactly.
    [[nodiscard]] std::optional<QDateTime> date(const QString& text) const;

private:
    std::optional<QTimeZone> m_zone;
    QString m_format;
};

} // namespace kelvara
