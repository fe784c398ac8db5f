#pragma once

#include <QDateTime>
#include <QString>

namespace kelvara {

/// Dates as texts, in GMT and the device's current locale (`QLocale()`). Any thread.
class Utility
{
public:
    Utility() = delete;

    /// The date that a text of the form "3 Mar 2021" names, at 00:00 GMT; the current moment when it names none.
    [[nodiscard]] static QDateTime getDate(const QString& from);

    /// The date in the form "3 Mar, 2021". (The comma is meant: `getDate` does not read it back.)
    [[nodiscard]] static QString getString(const QDateTime& from);
};

} // namespace kelvara
