#pragma once

#include "Platform/Chip/access/PacePassword.h"
#include "Platform/Chip/access/PaceSelection.h"
#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

namespace kelvara::chip {

/// PACE as a chip does it: the other side of `Pace`. Not shared between threads.
class ChipPace
{
public:
    /// `offers` is what EF.CardAccess announces. `staticKey` is the chip's own key for the chip authentication mapping,
    /// of the group of those offers that use it.
    ChipPace(std::vector<PaceSelection> offers, std::vector<PacePassword> passwords, KeyPair staticKey = {},
        RandomSource random = secureRandom());

    /// Whether the command belongs to PACE: MSE:Set AT for mutual authentication, or GENERAL AUTHENTICATE after it.
    [[nodiscard]] bool isFor(const CommandApdu& command) const;
    [[nodiscard]] ResponseApdu answer(const CommandApdu& command);

    /// The keys that were agreed, once, after the answer to the last step: they count from the next command on.
    [[nodiscard]] std::optional<SessionKeys> takeSession();

private:
    enum class Step { Idle, Nonce, Map, Agree, Confirm };

    ResponseApdu select(const CommandApdu& command);
    ResponseApdu sendNonce();
    ResponseApdu map(ByteView data);
    ResponseApdu agree(ByteView data);
    ResponseApdu confirm(ByteView data);
    ResponseApdu refuse(std::uint16_t sw);

    std::vector<PaceSelection> m_offers;
    std::vector<PacePassword> m_passwords;
    KeyPair m_staticKey;
    RandomSource m_random;
    Step m_step = Step::Idle;
    PaceSelection m_selection;
    Bytes m_password;
    Bytes m_nonce;
    Bytes m_generator;
    KeyPair m_mappingPair;
    KeyPair m_pair;
    Bytes m_terminalKey;
    SessionKeys m_keys;
    std::optional<SessionKeys> m_session;
};

} // namespace kelvara::chip
