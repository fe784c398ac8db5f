#pragma once

#include "Platform/Chip/Tlv.h"
#include "Platform/Foundation/Export.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kelvara::chip {

/// The elementary files of a passport's chip (ICAO Doc 9303-10 §3 and §4). Each data group has its number as value.
enum class DataGroupId {
    COM = 0,
    DG1 = 1,
    DG2,
    DG3,
    DG4,
    DG5,
    DG6,
    DG7,
    DG8,
    DG9,
    DG10,
    DG11,
    DG12,
    DG13,
    DG14,
    DG15,
    DG16,
    SOD,
    CardAccess,
    CardSecurity,
    AtrInfo,
    Dir,
};

/// What names a file on the chip. A value.
struct DataGroupEntry
{
    DataGroupId id;
    std::uint16_t fileId; ///< Two files share one where one lies in the master file and one in the application.
    std::uint8_t shortFileId;
    std::optional<Tag> tag; ///< Of the template around the content; absent where the file has none of its own.
    std::string_view name; ///< "EF.COM", "DG1" …
    bool inApplication; ///< In the LDS application, else in the master file.
};

/// All files, in the order of the enumeration. Any thread.
[[nodiscard]] KELVARA_EXPORT std::span<const DataGroupEntry> dataGroupEntries();
[[nodiscard]] KELVARA_EXPORT const DataGroupEntry& entryOf(DataGroupId id);

/// DG1 to DG16.
[[nodiscard]] KELVARA_EXPORT bool isDataGroup(DataGroupId id);
/// Its number, 1 to 16; absent for files that are no data groups.
[[nodiscard]] KELVARA_EXPORT std::optional<int> numberOf(DataGroupId id);
/// The data group of a number; absent outside 1 to 16.
[[nodiscard]] KELVARA_EXPORT std::optional<DataGroupId> dataGroupOfNumber(int number);

/// The file whose template has this tag; absent for tags of none.
[[nodiscard]] KELVARA_EXPORT std::optional<DataGroupId> dataGroupOfTag(Tag tag);
/// The file of an identifier, within the LDS application or the master file.
[[nodiscard]] KELVARA_EXPORT std::optional<DataGroupId> dataGroupOfFileId(std::uint16_t fileId, bool inApplication);
/// The file of a name, exactly as written above.
[[nodiscard]] KELVARA_EXPORT std::optional<DataGroupId> dataGroupOfName(std::string_view name);

/// The data groups of a list of tags, as EF.COM holds it: in its order, each once; tags of no data group are passed
/// over.
[[nodiscard]] KELVARA_EXPORT std::vector<DataGroupId> dataGroupsOfTags(ByteView tags);
/// The tags of data groups one after the other, ready for EF.COM.
[[nodiscard]] KELVARA_EXPORT Bytes tagsOf(std::span<const DataGroupId> ids);

} // namespace kelvara::chip
