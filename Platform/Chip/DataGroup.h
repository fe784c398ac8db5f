#pragma once

#include "Platform/Chip/lds/COM.h"
#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/lds/DataGroup11.h"
#include "Platform/Chip/lds/DataGroup12.h"
#include "Platform/Chip/lds/DataGroup14.h"
#include "Platform/Chip/lds/DataGroup15.h"
#include "Platform/Chip/lds/DataGroup16.h"
#include "Platform/Chip/lds/DataGroup2.h"
#include "Platform/Chip/lds/DataGroup7.h"
#include "Platform/Chip/trust/SecurityObject.h"
#include "Platform/Foundation/Export.h"

#include <variant>

namespace kelvara::chip {

/// A file whose content is not looked into: of a kind that is not known here, or not well-formed. A value.
struct UnparsedGroup
{
    Bytes raw;
};

/// Any file of the chip.
using DataGroup = std::variant<UnparsedGroup, COM, DataGroup1, DataGroup2, DataGroup7, DataGroup11, DataGroup12,
    DataGroup14, DataGroup15, DataGroup16, SecurityObject>;

/// The file parsed by what its identifier says it is; `UnparsedGroup` where that fails. Any thread.
[[nodiscard]] KELVARA_EXPORT DataGroup parseDataGroup(DataGroupId id, ByteView file);

/// The file's bytes as they were read.
[[nodiscard]] KELVARA_EXPORT const Bytes& rawOf(const DataGroup& group);

} // namespace kelvara::chip
