#pragma once

#include "Platform/Chip/Bytes.h"

namespace kelvara::chip {

/// Whether decoding takes about as much time and memory as the picture's size lets expect. Both formats let a few
/// hundred bytes ask for more by far: JPEG for thousands of passes over the whole picture, JPEG 2000 for structures of
/// some hundred bytes for every few pixels. False also for what the decoder might read otherwise than it is read here.
/// For pictures whose size is known already; any thread.
[[nodiscard]] bool isDecodingModest(ByteView encoded);

} // namespace kelvara::chip
