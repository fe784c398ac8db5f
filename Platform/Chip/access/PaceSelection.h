#pragma once

#include "Platform/Chip/access/SecurityInfos.h"

namespace kelvara::chip {

/// One way to do PACE that a chip offers and this library knows.
struct PaceSelection
{
    PaceProtocol protocol;
    GroupPointer group;
    std::optional<unsigned> parameterId;
    bool isAmbiguous = false; ///< The chip announces several domain parameters, so that they must be named to it.
};

/// Every such way, the best first: the mapping that proves the chip genuine on its way before the others, curves before
/// prime fields, longer keys before shorter ones, generic before integrated mapping.
[[nodiscard]] std::vector<PaceSelection> paceSelections(const SecurityInfos& infos);

/// The best of them; absent when the chip offers none.
[[nodiscard]] std::optional<PaceSelection> choosePace(const SecurityInfos& infos);

} // namespace kelvara::chip
