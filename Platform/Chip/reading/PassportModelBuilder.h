#pragma once

#include "Platform/Chip/NFCPassportModel.h"
#include "Platform/Chip/reading/ReadState.h"

#include <memory>

namespace kelvara::chip {

/// The model of a read whose files were all found genuine. Fails on a portrait that cannot be decoded when it is
/// needed. The reader's thread only.
[[nodiscard]] std::variant<std::shared_ptr<NFCPassportModel>, NFCPassportReaderError> buildPassportModel(
    const ReadState& state, bool needsPortrait);

} // namespace kelvara::chip
