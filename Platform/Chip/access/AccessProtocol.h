#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SecureMessaging.h"

#include <optional>

namespace kelvara::chip {

enum class AccessError {
    WrongKey, ///< The chip works, but the key is not its own: most often a misread machine-readable zone.
    NotGenuine, ///< The chip could not prove to be the one that its signed data speak of.
    Protocol, ///< The chip said something that the protocol does not know: noise, a fault, or an attack.
    Unsupported, ///< The chip does not offer the protocol, or nothing of it that is known here.
};

struct AccessFailure
{
    AccessError error = AccessError::Protocol;
    std::uint16_t sw = 0; ///< The status word it was seen by; 9000 where the data were at fault, 0 before any response.
};

/// One of a chip's protocols as a conversation without a line: `command` is what to send next, `receive` takes the
/// answer, until there is no command left. Then it has either succeeded or failed. Does no input or output, never
/// blocks. Not shared between threads.
class AccessProtocol
{
public:
    virtual ~AccessProtocol();
    AccessProtocol(const AccessProtocol&) = delete;
    AccessProtocol& operator=(const AccessProtocol&) = delete;

    /// The command to send next; absent once the conversation is over.
    [[nodiscard]] const std::optional<CommandApdu>& command() const { return m_command; }
    /// The answer to `command`. Ignored when none is due.
    void receive(const ResponseApdu& response);

    [[nodiscard]] bool succeeded() const { return !m_command && !m_failure; }
    [[nodiscard]] const std::optional<AccessFailure>& failure() const { return m_failure; }

    /// The session that was agreed, once; absent before success and for protocols that agree none.
    [[nodiscard]] std::optional<SecureMessaging> takeSession();

protected:
    AccessProtocol() = default;

    /// Ends with `send`, `succeed` or `fail`.
    virtual void advance(const ResponseApdu& response) = 0;

    void send(CommandApdu command) { m_command = std::move(command); }
    void succeed() { m_command.reset(); }
    void succeed(SessionKeys keys);
    void fail(AccessError error, std::uint16_t sw);

private:
    std::optional<CommandApdu> m_command;
    std::optional<AccessFailure> m_failure;
    std::optional<SecureMessaging> m_session;
};

/// Whether a status word says that authentication failed: 63xx, 6982 (security status not satisfied) and 6988 (secure
/// messaging objects wrong) are all met in the field.
[[nodiscard]] bool saysWrongKey(std::uint16_t sw);

} // namespace kelvara::chip
