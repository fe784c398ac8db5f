#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/reading/ReadBudget.h"
#include "Platform/Chip/transport/CardTerminal.h"

#include <memory>
#include <optional>
#include <variant>

namespace kelvara::chip {

/// Why a command has no answer to go by. Whatever the cause, nothing more goes over this line.
struct LineFailure
{
    enum class Kind {
        Transport, ///< See `transport`.
        SessionEnded, ///< The chip answered a protected command in the clear, with `sw`.
        Tampered, ///< The answer was not made with the session's keys.
        Nonsense, ///< The answer is none, or there is no end of them: also once the read's budget is spent.
    };

    Kind kind = Kind::Nonsense;
    TransportError transport;
    std::uint16_t sw = 0;
};

/// One presentation of a card: commands go through its channel, protected once a session was agreed, answers that come
/// in pieces are put together, and a wish to stop is heard between commands. The reader's thread only.
class ChipLine
{
public:
    using Answer = std::variant<ResponseApdu, LineFailure>;

    /// All three live longer than this.
    ChipLine(CardChannel& channel, const CancelToken& cancel, ReadBudget& budget)
        : m_channel(channel), m_cancel(cancel), m_budget(budget)
    { }

    [[nodiscard]] Answer exchange(const CommandApdu& command);

    /// Runs a protocol until it has succeeded or failed; what is returned broke it off.
    [[nodiscard]] std::optional<LineFailure> run(AccessProtocol& protocol);

    /// From now on commands are protected by this session, instead of one before.
    void protect(SecureMessaging session) { m_session.emplace(std::move(session)); }
    [[nodiscard]] const std::optional<SecureMessaging>& session() const { return m_session; }

    [[nodiscard]] bool passesExtendedLength() const { return m_channel.passesExtendedLength(); }
    /// Commands sent so far.
    [[nodiscard]] std::size_t commands() const { return m_commands; }

private:
    [[nodiscard]] Answer transmit(const CommandApdu& command);
    [[nodiscard]] Answer transmitWhole(const CommandApdu& command);

    CardChannel& m_channel;
    const CancelToken& m_cancel;
    ReadBudget& m_budget;
    std::optional<SecureMessaging> m_session;
    std::size_t m_commands = 0;
};

} // namespace kelvara::chip
