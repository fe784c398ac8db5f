#include "Platform/Chip/reading/ChipLine.h"

#include <chrono>
#include <utility>

namespace kelvara::chip {

namespace {

constexpr std::size_t kLongestAnswer = 65'536 + 256;

LineFailure failure(LineFailure::Kind kind, std::uint16_t sw)
{
    return { kind, {}, sw };
}

} // namespace

ChipLine::Answer ChipLine::transmit(const CommandApdu& command)
{
    if (m_cancel.isCancelled())
        return LineFailure { LineFailure::Kind::Transport, { TransportError::Kind::Cancelled, "cancelled" }, 0 };
    if (m_budget.isSpent())
        return failure(LineFailure::Kind::Nonsense, 0);
    ++m_commands;
    const auto before = std::chrono::steady_clock::now();
    auto answer = m_channel.transmit(command.encoded());
    m_budget.spend(std::chrono::steady_clock::now() - before);
    if (auto* error = std::get_if<TransportError>(&answer))
        return LineFailure { LineFailure::Kind::Transport, std::move(*error), 0 };
    auto response = ResponseApdu::decoded(std::get<Bytes>(answer));
    if (!response)
        return failure(LineFailure::Kind::Nonsense, 0);
    return std::move(*response);
}

ChipLine::Answer ChipLine::transmitWhole(const CommandApdu& command)
{
    constexpr std::uint8_t moreToCome = 0x61;
    Answer answer = transmit(command);
    Bytes pieces;
    bool isGoingOn = false; ///< Only the first answer may announce more without bringing anything.
    while (auto* response = std::get_if<ResponseApdu>(&answer)) {
        const bool isPiece = response->sw >> 8 == moreToCome;
        const bool isEmpty = isPiece && response->data.empty();
        if (isEmpty && isGoingOn)
            return failure(LineFailure::Kind::Nonsense, response->sw);
        isGoingOn = true;
        if (!isPiece && pieces.empty())
            break;
        pieces.insert(pieces.end(), response->data.begin(), response->data.end());
        if (pieces.size() > kLongestAnswer)
            return failure(LineFailure::Kind::Nonsense, response->sw);
        if (!isPiece) {
            response->data = std::move(pieces);
            break;
        }
        const std::uint32_t rest = response->sw & 0xFF;
        answer = transmit({ 0x00, 0xC0, 0x00, 0x00, {}, rest == 0 ? 256 : rest }); // GET RESPONSE
    }
    return answer;
}

ChipLine::Answer ChipLine::exchange(const CommandApdu& command)
{
    if (!m_session)
        return transmitWhole(command);
    const auto protectedCommand = m_session->protect(command);
    if (!protectedCommand)
        return failure(LineFailure::Kind::SessionEnded, 0);
    Answer answer = transmitWhole(*protectedCommand);
    const auto* const response = std::get_if<ResponseApdu>(&answer);
    if (!response)
        return answer;
    auto plain = m_session->unprotect(*response);
    if (const auto* broken = std::get_if<MessagingFailure>(&plain)) {
        const bool isInTheClear
            = broken->error == MessagingError::Unprotected || broken->error == MessagingError::SessionOver;
        return failure(isInTheClear ? LineFailure::Kind::SessionEnded : LineFailure::Kind::Tampered, broken->sw);
    }
    return std::get<ResponseApdu>(std::move(plain));
}

std::optional<LineFailure> ChipLine::run(AccessProtocol& protocol)
{
    while (protocol.command()) {
        const Answer answer = exchange(*protocol.command());
        if (const auto* broken = std::get_if<LineFailure>(&answer))
            return *broken;
        protocol.receive(std::get<ResponseApdu>(answer));
    }
    return std::nullopt;
}

} // namespace kelvara::chip
