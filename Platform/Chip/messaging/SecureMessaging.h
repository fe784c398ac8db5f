#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

#include <variant>

namespace kelvara::chip {

enum class MessagingError {
    Unprotected, ///< The chip answered in the clear: it has ended the session (the status word tells why).
    BadChecksum, ///< The response was made or changed by someone without the keys.
    Malformed, ///< The chip authenticated something that is no protected response.
    SessionOver, ///< An earlier failure ended the session.
};

struct MessagingFailure
{
    MessagingError error = MessagingError::SessionOver;
    std::uint16_t sw = 0; ///< The outer status word, as far as there was a response.
};

/// Secure messaging of ICAO Doc 9303-11 §9.8, the terminal's side. Strictly one `unprotect` after each `protect`. Any
/// failure is final: the counters of both sides may differ from then on, and an attacker gets one guess. Not shared
/// between threads.
class SecureMessaging
{
public:
    explicit SecureMessaging(SessionKeys keys) : m_keys(std::move(keys)) { }

    // Two that count alike would use the same initial vectors twice.
    SecureMessaging(const SecureMessaging&) = delete;
    SecureMessaging& operator=(const SecureMessaging&) = delete;
    SecureMessaging(SecureMessaging&&) = default;
    SecureMessaging& operator=(SecureMessaging&&) = default;

    /// The command as it goes over the air; absent when the session is over or the data would not fit into a command.
    [[nodiscard]] std::optional<CommandApdu> protect(const CommandApdu& command);

    /// What the chip said; its status word comes from within the protection. Nothing of a response is looked at before
    /// its checksum was found right.
    [[nodiscard]] std::variant<ResponseApdu, MessagingFailure> unprotect(const ResponseApdu& response);

    [[nodiscard]] bool isOver() const { return m_isOver; }

    /// The most data bytes whose protected response still fits into 256 bytes.
    [[nodiscard]] std::size_t greatestShortResponse() const;

private:
    [[nodiscard]] MessagingFailure end(MessagingError error, std::uint16_t sw);

    SessionKeys m_keys;
    bool m_isOver = false;
    bool m_isAnswerDue = false;
};

} // namespace kelvara::chip
