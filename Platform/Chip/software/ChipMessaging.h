#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

namespace kelvara::chip {

/// Secure messaging as a chip does it: the other side of `SecureMessaging`. Not shared between threads.
class ChipMessaging
{
public:
    explicit ChipMessaging(SessionKeys keys) : m_keys(std::move(keys)) { }

    /// The command the terminal meant; absent when it was not protected with these keys. Then the session is over, and
    /// the chip answers 6988 in the clear.
    [[nodiscard]] std::optional<CommandApdu> unprotect(const CommandApdu& command);

    /// The answer to the command that was unprotected last.
    [[nodiscard]] ResponseApdu protect(const ResponseApdu& response);

    /// The most data bytes whose protected answer still fits into 256 bytes.
    [[nodiscard]] std::size_t greatestShortResponse() const;

    [[nodiscard]] bool isOver() const { return m_isOver; }

private:
    SessionKeys m_keys;
    std::uint8_t m_ins = 0;
    bool m_isOver = false;
};

} // namespace kelvara::chip
