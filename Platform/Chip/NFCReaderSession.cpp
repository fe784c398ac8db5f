#include "Platform/Chip/NFCReaderSession.h"

#include "Platform/Chip/ChipLog.h"
#include "Platform/Chip/transport/DeviceTerminal.h"

#include <utility>

namespace kelvara {

namespace {

class TerminalSession : public NFCReaderSession
{
public:
    explicit TerminalSession(std::shared_ptr<chip::CardTerminal> terminal) : m_terminal(std::move(terminal)) { }

    [[nodiscard]] bool readingAvailable() const override { return m_terminal && m_terminal->isAvailable(); }
    [[nodiscard]] std::shared_ptr<chip::CardTerminal> terminal() const override { return m_terminal; }

private:
    std::shared_ptr<chip::CardTerminal> m_terminal;
};

class DeviceSession final : public TerminalSession
{
public:
    DeviceSession() : TerminalSession(chip::deviceTerminal()) { }

    [[nodiscard]] bool readingAvailable() const override
    {
        if (TerminalSession::readingAvailable())
            return true;
        // A view asks each time one is made; the log would say the same again and again.
        static bool isSaid = false;
        if (!std::exchange(isSaid, true))
            qCWarning(chipLog, "Chips cannot be read: %s", chip::whyUnavailable().c_str());
        return false;
    }
};

} // namespace

std::shared_ptr<NFCReaderSession> NFCReaderSession::native()
{
    return std::make_shared<DeviceSession>();
}

std::shared_ptr<NFCReaderSession> NFCReaderSession::of(std::shared_ptr<chip::CardTerminal> terminal)
{
    return std::make_shared<TerminalSession>(std::move(terminal));
}

} // namespace kelvara
