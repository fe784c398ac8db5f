#pragma once

#include "Platform/Foundation/Export.h"

#include <string_view>

namespace kelvara {

/// Prints "Fatal error: <sentence>" to standard error and aborts. For programming errors only; whatever the outside
/// world can cause is a value or a signal. Unlike `assert` it stands in release builds too. Any thread.
[[noreturn]] KELVARA_EXPORT void fatalError(std::string_view sentence);

/// The category of stops that state a broken precondition: prints "Assertion failed: <message>" (just
/// "Assertion failed" for an empty message) to standard error and aborts. Any thread.
[[noreturn]] KELVARA_EXPORT void assertionFailure(std::string_view message);

/// Stops with `assertionFailure(message)` unless the condition holds. Any thread.
inline void precondition(bool condition, std::string_view message)
{
    if (!condition)
        assertionFailure(message);
}

} // namespace kelvara
