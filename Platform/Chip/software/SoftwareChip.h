#pragma once

#include "Platform/Chip/software/ChipProfile.h"
#include "Platform/Chip/software/TraceEntry.h"
#include "Platform/Chip/software/VirtualReaderCard.h"
#include "Platform/Foundation/Export.h"

#include <functional>
#include <memory>
#include <variant>

namespace kelvara::chip::software {

/// The chip of an identity document (ICAO Doc 9303 parts 10 and 11), played by software: with it a host tests its own
/// app without cards. `SoftwareTerminal` holds it to the app's reader, `virtualReaderCard` to the reader service of
/// the machine.
///
/// It grants access as real chips do: without access control the application's files are locked; EF.CardSecurity is
/// readable after PACE only, DG3 and DG4 never. A wrongly protected command ends the session, and so does a plain one.
/// Whatever bytes come in, it answers and goes on.
///
/// Any thread: commands are carried out one after the other.
class KELVARA_EXPORT SoftwareChip
{
public:
    /// A chip with fresh keys, or a sentence about what of the profile cannot be. Takes some tens of milliseconds,
    /// most of them for the portrait, and longer by far where RSA keys are to be made. Any thread.
    [[nodiscard]] static std::variant<std::shared_ptr<SoftwareChip>, QString> make(const ChipProfile& profile);
    ~SoftwareChip();
    SoftwareChip(const SoftwareChip&) = delete;
    SoftwareChip& operator=(const SoftwareChip&) = delete;

    /// What comes of a command.
    struct Reaction
    {
        Bytes answer; ///< Data and status word; empty by fault only.
        bool isLost = false; ///< The card has left the field, and there is no answer until it is powered up again.
        std::chrono::milliseconds delay { 0 }; ///< The answer is due that much later; waiting is the caller's.
    };
    [[nodiscard]] Reaction react(ByteView command);
    /// The same with the waiting done. Empty where the card was lost.
    [[nodiscard]] Bytes transmit(ByteView command);

    /// The card comes into a field (again), or is reset: nothing of a session is left.
    void powerUp();
    /// What it says of itself then.
    [[nodiscard]] Bytes answerToReset() const;

    /// From the next command on. Commands are counted on.
    void setFaults(ChipFaults faults);

    /// Called after every command, on the thread that sent it. It shows in the clear what secure messaging hides: for
    /// learning, with chips in software only, as a real one's would be personal data.
    using Trace = std::function<void(const TraceEntry& entry)>;
    void setTrace(Trace trace);

    /// What `PassportReader::readPassport` is given to open it. Empty for a card of another kind.
    [[nodiscard]] QString mrzKey() const;
    /// The authority whose certificate a host trusts to find the chip genuine. Absent for a card of another kind.
    [[nodiscard]] std::optional<TestAuthority> authority() const;
    /// The files as they are on the chip, readable or not.
    [[nodiscard]] std::map<DataGroupId, Bytes> files() const;

private:
    struct State;
    explicit SoftwareChip(std::unique_ptr<State> state);

    std::unique_ptr<State> d;
};

/// The chip as a card for the virtual reader of the machine's reader service.
[[nodiscard]] KELVARA_EXPORT VirtualReaderCard::Card virtualReaderCard(std::shared_ptr<SoftwareChip> chip);

} // namespace kelvara::chip::software
