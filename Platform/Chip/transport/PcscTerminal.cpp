#include "Platform/Chip/transport/PcscTerminal.h"

#include "Platform/Chip/transport/PcscChannel.h"

#include <algorithm>
#include <thread>

namespace kelvara::chip {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kGlance = 100ms; ///< Between two looks at the cancel token.

/// Contact slots and readers of security modules take no cards from the air.
bool mayBeContactless(const std::string& name)
{
    return name.find("SAM") == std::string::npos && name.find("Contact Reader") == std::string::npos;
}

std::optional<std::string> chosenReader(const PcscContext& context, const std::string& wanted)
{
    const std::vector<std::string> names = context.readers();
    const auto suits = [&](const std::string& name) {
        return wanted.empty() ? mayBeContactless(name) : name.find(wanted) != std::string::npos;
    };
    // Readers with both kinds of slots name them; the others have one slot, which is what there is.
    const auto contactless = std::ranges::find_if(names, [&](const std::string& name) {
        return suits(name) && (name.find("PICC") != std::string::npos || name.find("Contactless") != std::string::npos);
    });
    if (contactless != names.end())
        return *contactless;
    const auto any = std::ranges::find_if(names, suits);
    return any == names.end() ? std::nullopt : std::optional(*any);
}

} // namespace

PcscTerminal::PcscTerminal(std::string readerName) : m_readerName(std::move(readerName)) { }

bool PcscTerminal::isAvailable() const
{
    return chosenReader(PcscContext(), m_readerName).has_value();
}

bool PcscTerminal::isServiceRunning() const
{
    return !PcscContext().problem();
}

std::string PcscTerminal::whyUnavailable() const
{
    if (const PcscContext context; context.problem())
        return "the PC/SC service cannot be reached (" + context.problem()->detail
            + "). Is pcscd installed and running?";
    return "no contactless reader is connected.";
}

std::variant<std::unique_ptr<CardChannel>, TransportError> PcscTerminal::waitForCard(
    std::chrono::milliseconds timeout, const CancelToken& cancel)
{
    const auto deadline = Clock::now() + timeout;
    TransportError last { TransportError::Kind::NoReader, "no reader is connected" };
    while (!cancel.isCancelled() && Clock::now() < deadline) {
        PcscContext context;
        const auto reader = context.problem() ? std::nullopt : chosenReader(context, m_readerName);
        if (!reader) {
            if (context.problem())
                last = *context.problem();
            std::this_thread::sleep_for(kGlance);
            continue;
        }
        last = { TransportError::Kind::NoCard, "no card was held to the reader" };
        SCARD_READERSTATE state {};
        state.szReader = reader->c_str();
        LONG code = SCardGetStatusChange(context.handle(), 0, &state, 1);
        if (code == SCARD_S_SUCCESS && !(state.dwEventState & SCARD_STATE_PRESENT)) {
            state.dwCurrentState = state.dwEventState;
            code = SCardGetStatusChange(context.handle(), kGlance.count(), &state, 1);
        }
        if (code != SCARD_S_SUCCESS && code != SCARD_E_TIMEOUT) {
            std::this_thread::sleep_for(kGlance);
            continue; // the reader went; another may come
        }
        if (!(state.dwEventState & SCARD_STATE_PRESENT))
            continue; // the wait above has passed
        if (state.dwEventState & SCARD_STATE_MUTE) {
            std::this_thread::sleep_for(kGlance);
            continue;
        }
        auto opened = PcscChannel::open(std::move(context), *reader);
        const auto* const failure = std::get_if<TransportError>(&opened);
        if (!failure)
            return opened;
        last = *failure; // it left again, or another program has it
        std::this_thread::sleep_for(kGlance);
    }
    if (cancel.isCancelled())
        return TransportError { TransportError::Kind::Cancelled, "cancelled while waiting for a card" };
    return last;
}

} // namespace kelvara::chip
