#include "Platform/Foundation/MrzDates.h"

#include <array>
#include <cstdlib>

namespace kelvara {

namespace {

struct ShortDate
{
    int year = 0; ///< Of the century.
    int month = 0;
    int day = 0;

    [[nodiscard]] QDate in(int century) const { return QDate(century + year, month, day); }
};

std::optional<ShortDate> shortDate(QStringView digits)
{
    if (digits.size() != 6)
        return std::nullopt;
    std::array<int, 6> d {};
    for (std::size_t i = 0; i < d.size(); ++i) {
        const char16_t character = digits[static_cast<qsizetype>(i)].unicode();
        if (character < u'0' || character > u'9')
            return std::nullopt;
        d[i] = character - u'0';
    }
    return ShortDate { d[0] * 10 + d[1], d[2] * 10 + d[3], d[4] * 10 + d[5] };
}

int centuryOf(const QDate& today)
{
    return today.year() / 100 * 100;
}

} // namespace

std::optional<QDate> mrzBirthDate(QStringView digits, const QDate& today)
{
    const auto date = shortDate(digits);
    if (!date)
        return std::nullopt;
    for (const int century : { centuryOf(today), centuryOf(today) - 100 }) {
        const QDate day = date->in(century);
        if (day.isValid() && day <= today)
            return day;
    }
    return std::nullopt;
}

std::optional<QDate> mrzExpiryDate(QStringView digits, const QDate& today)
{
    const auto date = shortDate(digits);
    if (!date)
        return std::nullopt;
    std::optional<QDate> nearest;
    for (const int century : { centuryOf(today), centuryOf(today) - 100, centuryOf(today) + 100 }) {
        const QDate day = date->in(century);
        if (day.isValid()
            && (!nearest || std::abs(day.year() - today.year()) < std::abs(nearest->year() - today.year())))
            nearest = day;
    }
    return nearest;
}

} // namespace kelvara
