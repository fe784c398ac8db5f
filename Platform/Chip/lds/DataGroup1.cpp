#include "Platform/Chip/lds/DataGroup1.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

struct Place
{
    int line, column, length;
};

struct Layout
{
    DataGroup1::Format format;
    int lines, length;
    Place number, nationality, birth, sex, expiry, optional, moreOptional, name;
};

using Format = DataGroup1::Format;

constexpr std::array<Layout, 3> kLayouts { {
    { Format::TD1, 3, 30, { 0, 5, 9 }, { 1, 15, 3 }, { 1, 0, 6 }, { 1, 7, 1 }, { 1, 8, 6 }, { 0, 15, 15 },
        { 1, 18, 11 }, { 2, 0, 30 } },
    { Format::TD2, 2, 36, { 1, 0, 9 }, { 1, 10, 3 }, { 1, 13, 6 }, { 1, 20, 1 }, { 1, 21, 6 }, { 1, 28, 7 },
        { 0, 0, 0 }, { 0, 5, 31 } },
    { Format::TD3, 2, 44, { 1, 0, 9 }, { 1, 10, 3 }, { 1, 13, 6 }, { 1, 20, 1 }, { 1, 21, 6 }, { 1, 28, 14 },
        { 0, 0, 0 }, { 0, 5, 39 } },
} };

QString withoutTail(QString text)
{
    while (text.endsWith(u'<'))
        text.chop(1);
    return text;
}

/// A document number of more than nine characters goes on in the optional data, up to its check digit and a filler.
void takeLongNumber(DataGroup1& group, QChar check)
{
    if (check != u'<' || group.documentNumber.size() != 9 || group.format == Format::TD3)
        return;
    const qsizetype end = group.optionalData.indexOf(u'<');
    const QString more = end < 0 ? group.optionalData : group.optionalData.left(end);
    if (more.size() < 2)
        return;
    group.documentNumber += more.chopped(1);
    group.optionalData = end < 0 ? QString() : group.optionalData.mid(end + 1);
}

} // namespace

std::optional<DataGroup1> DataGroup1::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x61);
    const auto zone = content ? findTlv(*content, 0x5F1F) : std::nullopt;
    if (!zone)
        return std::nullopt;
    const auto layout = std::find_if(kLayouts.begin(), kLayouts.end(),
        [&](const Layout& one) { return zone->value.size() == static_cast<std::size_t>(one.lines * one.length); });
    const bool inAlphabet = std::all_of(zone->value.begin(), zone->value.end(),
        [](std::uint8_t c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '<'; });
    if (layout == kLayouts.end() || !inAlphabet)
        return std::nullopt;

    DataGroup1 group;
    group.format = layout->format;
    const QString text = ldsText(zone->value);
    for (int i = 0; i < layout->lines; ++i)
        group.lines.append(text.mid(i * layout->length, layout->length));
    const auto field
        = [&](Place place) { return withoutTail(group.lines[place.line].mid(place.column, place.length)); };
    const auto whole = [&](Place place) { return group.lines[place.line].mid(place.column, place.length); };
    group.documentCode = field({ 0, 0, 2 });
    group.issuingState = field({ 0, 2, 3 });
    group.documentNumber = field(layout->number);
    group.nationality = field(layout->nationality);
    group.birthDate = whole(layout->birth);
    group.expiryDate = whole(layout->expiry);
    group.sex = whole(layout->sex);
    group.optionalData = field(layout->optional);
    group.moreOptionalData = field(layout->moreOptional);
    group.name = HolderName::parse(whole(layout->name));
    takeLongNumber(group, group.lines[layout->number.line][layout->number.column + layout->number.length]);
    group.raw = bytes(file);
    return group;
}

} // namespace kelvara::chip
