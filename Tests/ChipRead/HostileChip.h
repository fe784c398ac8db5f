#pragma once

#include "Platform/Chip/transport/CardTerminal.h"

#include <functional>

namespace kelvara {

/// A card that answers as a function says; nothing from it is a card that has left. It is always in the field.
class HostileChip final : public chip::CardTerminal
{
public:
    using Answer = std::function<std::optional<chip::Bytes>(chip::ByteView command)>;
    explicit HostileChip(Answer answer, std::function<void()> poweredUp = {})
        : m_answer(std::move(answer)), m_poweredUp(std::move(poweredUp))
    { }

    [[nodiscard]] bool isAvailable() const override { return true; }
    [[nodiscard]] std::variant<std::unique_ptr<chip::CardChannel>, chip::TransportError> waitForCard(
        std::chrono::milliseconds, const chip::CancelToken& cancel) override
    {
        if (cancel.isCancelled())
            return chip::TransportError { chip::TransportError::Kind::Cancelled, "cancelled" };
        if (m_poweredUp)
            m_poweredUp();
        return std::unique_ptr<chip::CardChannel>(std::make_unique<Channel>(*this));
    }
    [[nodiscard]] std::size_t commands() const { return m_commands; }

private:
    class Channel final : public chip::CardChannel
    {
    public:
        explicit Channel(HostileChip& chip) : m_chip(chip) { }
        [[nodiscard]] std::variant<chip::Bytes, chip::TransportError> transmit(chip::ByteView command) override
        {
            ++m_chip.m_commands;
            if (auto answer = m_chip.m_answer(command))
                return std::move(*answer);
            return chip::TransportError { chip::TransportError::Kind::CardLost, "the card left" };
        }
        [[nodiscard]] bool passesExtendedLength() const override { return true; }

    private:
        HostileChip& m_chip; ///< Lives longer.
    };

    Answer m_answer;
    std::function<void()> m_poweredUp;
    std::size_t m_commands = 0;
};

} // namespace kelvara
