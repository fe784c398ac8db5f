#pragma once

#include "Platform/Chip/transport/CardTerminal.h"

#include <memory>
#include <string>

namespace kelvara::chip {

/// The device's own reader, of whichever back end this build has and this device can use. Never null: a reader that is
/// not there now may be connected later. Main thread.
[[nodiscard]] std::shared_ptr<CardTerminal> deviceTerminal();

/// Why no card can be read right now and what would help, for the log. Main thread.
[[nodiscard]] std::string whyUnavailable();

} // namespace kelvara::chip
