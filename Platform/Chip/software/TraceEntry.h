#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Foundation/Export.h"

#include <string>

namespace kelvara::chip::software {

/// One command and its answer as the chip understood and meant them, before and after secure messaging. A value.
struct TraceEntry
{
    unsigned number = 0; ///< Of the command in the chip's life, from 1.
    std::string name; ///< "READ BINARY" …; empty for an instruction that is not known here.
    bool isProtected = false; ///< Went through secure messaging.
    CommandApdu command; ///< In plain. Empty but for its header where it could not be understood.
    ResponseApdu response; ///< In plain, before any fault changed it.
};

/// The name of a command as the standards have it; empty for others.
[[nodiscard]] KELVARA_EXPORT std::string commandName(const CommandApdu& command);

} // namespace kelvara::chip::software
