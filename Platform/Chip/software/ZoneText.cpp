#include "Platform/Chip/software/ZoneText.h"

#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/software/LdsFiles.h"

#include <algorithm>
#include <array>
#include <vector>

namespace kelvara::chip::software {

namespace {

using Format = DataGroup1::Format;

struct Place
{
    int line, column, length;
};

/// Where the checked fields stand, each with its check digit right behind it, and what the last check digit covers.
struct Checks
{
    Place number, birth, expiry, name, all;
    std::vector<Place> covered;
};

const Checks& checksOf(Format format)
{
    static const std::array<Checks, 3> known { {
        { { 0, 5, 9 }, { 1, 0, 6 }, { 1, 8, 6 }, { 2, 0, 30 }, { 1, 29, 1 },
            { { 0, 5, 25 }, { 1, 0, 7 }, { 1, 8, 7 }, { 1, 18, 11 } } },
        { { 1, 0, 9 }, { 1, 13, 6 }, { 1, 21, 6 }, { 0, 5, 31 }, { 1, 35, 1 },
            { { 1, 0, 10 }, { 1, 13, 7 }, { 1, 21, 14 } } },
        { { 1, 0, 9 }, { 1, 13, 6 }, { 1, 21, 6 }, { 0, 5, 39 }, { 1, 43, 1 },
            { { 1, 0, 10 }, { 1, 13, 7 }, { 1, 21, 22 } } },
    } };
    return known[static_cast<std::size_t>(format)];
}

QString textAt(const QStringList& lines, const Place& place)
{
    return lines[place.line].mid(place.column, place.length);
}

QChar checkDigit(const QString& field)
{
    constexpr std::array weights { 7, 3, 1 };
    int sum = 0;
    for (qsizetype i = 0; i < field.size(); ++i) {
        const char16_t c = field[i].unicode();
        const int value = c == u'<' ? 0 : c <= u'9' ? c - u'0' : c - u'A' + 10;
        sum += value * weights[static_cast<std::size_t>(i) % weights.size()];
    }
    return QChar(static_cast<char16_t>(u'0' + sum % 10));
}

QString keyTextOf(const DataGroup1& group)
{
    const QString number = group.documentNumber.leftJustified(9, u'<');
    return number + checkDigit(number) + group.birthDate + checkDigit(group.birthDate) + group.expiryDate
        + checkDigit(group.expiryDate);
}

std::optional<DataGroup1> parsed(const QStringList& lines)
{
    return DataGroup1::parse(makeDG1(lines.join(u'\n')));
}

/// What is wrong with a field's check digit; empty where nothing is.
QString complaint(const QStringList& lines, const Place& field, const char* name)
{
    const QChar right = checkDigit(textAt(lines, field));
    if (lines[field.line][field.column + field.length] == right)
        return {};
    return QStringLiteral("The zone's check digit of the %1 should be %2.").arg(QLatin1String(name), QString(right));
}

} // namespace

std::variant<ZoneText, QString> ZoneText::of(const QStringList& lines)
{
    ZoneText zone;
    for (const QString& line : lines.mid(0, 4))
        zone.m_lines.append(line.trimmed());
    const bool isOneLength = std::all_of(zone.m_lines.begin(), zone.m_lines.end(),
        [&](const QString& line) { return line.size() == zone.m_lines[0].size(); });
    // Characters beyond Latin-1 would become others in a chip's bytes.
    const bool isPlain = std::all_of(zone.m_lines.begin(), zone.m_lines.end(), [](const QString& line) {
        return std::all_of(line.begin(), line.end(), [](QChar c) { return c.unicode() < 0x80 && !c.isSpace(); });
    });
    const auto group = isOneLength && isPlain ? parsed(zone.m_lines) : std::nullopt;
    if (!group || zone.m_lines != group->lines)
        return QStringLiteral("The zone needs three lines of 30, two of 36 or two of 44 characters of A to Z, 0 to 9 "
                              "and '<'.");
    const Checks& checks = checksOf(group->format);
    QString wrong = complaint(zone.m_lines, checks.birth, "birth date");
    if (wrong.isEmpty())
        wrong = complaint(zone.m_lines, checks.expiry, "expiry date");
    if (wrong.isEmpty() && group->documentNumber.size() <= 9)
        wrong = complaint(zone.m_lines, checks.number, "document number");
    if (!wrong.isEmpty())
        return wrong;
    zone.m_keyText = keyTextOf(*group).toStdString();
    if (!MrzKey::fromText(zone.m_keyText))
        return QStringLiteral("The zone's document number and dates make no access key.");
    return zone;
}

ZoneText ZoneText::withAnotherName() const
{
    ZoneText other = *this;
    const Place name = checksOf(parsed(m_lines)->format).name;
    QChar& initial = other.m_lines[name.line][name.column];
    initial = initial == u'Q' ? u'W' : u'Q';
    return other;
}

ZoneText ZoneText::ofAnotherDocument() const
{
    ZoneText other = withAnotherName();
    const Checks& checks = checksOf(parsed(m_lines)->format);
    QString& line = other.m_lines[checks.expiry.line];
    QChar& year = line[checks.expiry.column + 1];
    year = year >= u'0' && year < u'9' ? QChar(static_cast<char16_t>(year.unicode() + 1)) : QChar(u'0');
    line[checks.expiry.column + checks.expiry.length] = checkDigit(textAt(other.m_lines, checks.expiry));
    QString covered;
    for (const Place& place : checks.covered)
        covered += textAt(other.m_lines, place);
    other.m_lines[checks.all.line][checks.all.column] = checkDigit(covered);
    other.m_keyText = keyTextOf(*parsed(other.m_lines)).toStdString();
    return other;
}

} // namespace kelvara::chip::software
