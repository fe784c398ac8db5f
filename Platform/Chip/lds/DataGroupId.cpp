#include "Platform/Chip/lds/DataGroupId.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

using Id = DataGroupId;

constexpr std::array<DataGroupEntry, 22> kEntries { {
    { Id::COM, 0x011E, 0x1E, 0x60, "EF.COM", true },
    { Id::DG1, 0x0101, 0x01, 0x61, "DG1", true },
    { Id::DG2, 0x0102, 0x02, 0x75, "DG2", true },
    { Id::DG3, 0x0103, 0x03, 0x63, "DG3", true },
    { Id::DG4, 0x0104, 0x04, 0x76, "DG4", true },
    { Id::DG5, 0x0105, 0x05, 0x65, "DG5", true },
    { Id::DG6, 0x0106, 0x06, 0x66, "DG6", true },
    { Id::DG7, 0x0107, 0x07, 0x67, "DG7", true },
    { Id::DG8, 0x0108, 0x08, 0x68, "DG8", true },
    { Id::DG9, 0x0109, 0x09, 0x69, "DG9", true },
    { Id::DG10, 0x010A, 0x0A, 0x6A, "DG10", true },
    { Id::DG11, 0x010B, 0x0B, 0x6B, "DG11", true },
    { Id::DG12, 0x010C, 0x0C, 0x6C, "DG12", true },
    { Id::DG13, 0x010D, 0x0D, 0x6D, "DG13", true },
    { Id::DG14, 0x010E, 0x0E, 0x6E, "DG14", true },
    { Id::DG15, 0x010F, 0x0F, 0x6F, "DG15", true },
    { Id::DG16, 0x0110, 0x10, 0x70, "DG16", true },
    { Id::SOD, 0x011D, 0x1D, 0x77, "EF.SOD", true },
    { Id::CardAccess, 0x011C, 0x1C, std::nullopt, "EF.CardAccess", false },
    { Id::CardSecurity, 0x011D, 0x1D, std::nullopt, "EF.CardSecurity", false },
    { Id::AtrInfo, 0x2F01, 0x01, std::nullopt, "EF.ATR/INFO", false },
    { Id::Dir, 0x2F00, 0x1E, std::nullopt, "EF.DIR", false },
} };

template<typename Predicate> std::optional<DataGroupId> findId(Predicate predicate)
{
    const auto found = std::find_if(kEntries.begin(), kEntries.end(), predicate);
    return found == kEntries.end() ? std::nullopt : std::optional(found->id);
}

} // namespace

std::span<const DataGroupEntry> dataGroupEntries()
{
    return kEntries;
}

const DataGroupEntry& entryOf(DataGroupId id)
{
    return kEntries[static_cast<std::size_t>(id)];
}

bool isDataGroup(DataGroupId id)
{
    return id >= Id::DG1 && id <= Id::DG16;
}

std::optional<int> numberOf(DataGroupId id)
{
    return isDataGroup(id) ? std::optional(static_cast<int>(id)) : std::nullopt;
}

std::optional<DataGroupId> dataGroupOfNumber(int number)
{
    if (number < 1 || number > 16)
        return std::nullopt;
    return static_cast<DataGroupId>(number);
}

std::optional<DataGroupId> dataGroupOfTag(Tag tag)
{
    return findId([tag](const DataGroupEntry& entry) { return entry.tag == tag; });
}

std::optional<DataGroupId> dataGroupOfFileId(std::uint16_t fileId, bool inApplication)
{
    return findId(
        [=](const DataGroupEntry& entry) { return entry.fileId == fileId && entry.inApplication == inApplication; });
}

std::optional<DataGroupId> dataGroupOfName(std::string_view name)
{
    return findId([name](const DataGroupEntry& entry) { return entry.name == name; });
}

std::vector<DataGroupId> dataGroupsOfTags(ByteView tags)
{
    std::vector<DataGroupId> ids;
    for (const std::uint8_t tag : tags) { // all of them have one byte
        const auto id = dataGroupOfTag(tag);
        if (id && isDataGroup(*id) && std::find(ids.begin(), ids.end(), *id) == ids.end())
            ids.push_back(*id);
    }
    return ids;
}

Bytes tagsOf(std::span<const DataGroupId> ids)
{
    Bytes tags;
    for (const DataGroupId id : ids) {
        if (const auto tag = entryOf(id).tag; tag && isDataGroup(id))
            tags.push_back(static_cast<std::uint8_t>(*tag));
    }
    return tags;
}

} // namespace kelvara::chip
