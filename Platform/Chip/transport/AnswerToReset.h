#pragma once

#include "Platform/Chip/Bytes.h"

namespace kelvara::chip {

/// Whether an answer to reset says that the card takes commands of extended length: the third software function table
/// of the card capabilities among its historical bytes (ISO/IEC 7816-4 §12.1.1.9, bit 7). False for anything else.
[[nodiscard]] bool announcesExtendedLength(ByteView answerToReset);

/// The historical bytes of an answer to reset (ISO/IEC 7816-3 §8.2.4); empty where there are none.
[[nodiscard]] ByteView historicalBytes(ByteView answerToReset);

} // namespace kelvara::chip
