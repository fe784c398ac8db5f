#pragma once

#include "Platform/Chip/access/MrzKey.h"
#include "Platform/Chip/crypto/RandomSource.h"
#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

#include <optional>

namespace kelvara::chip {

/// Basic access control as a chip does it: the other side of `Bac`. Not shared between threads.
class ChipBac
{
public:
    explicit ChipBac(const MrzKey& key, RandomSource random = secureRandom());

    /// Whether the command belongs to it: GET CHALLENGE or EXTERNAL AUTHENTICATE.
    [[nodiscard]] static bool isFor(const CommandApdu& command);
    [[nodiscard]] ResponseApdu answer(const CommandApdu& command);

    /// The keys that were agreed, once: they count from the next command on.
    [[nodiscard]] std::optional<SessionKeys> takeSession();

private:
    SessionKeys m_documentKeys;
    RandomSource m_random;
    Bytes m_challenge; ///< Empty when none was asked for; used once.
    std::optional<SessionKeys> m_session;
};

} // namespace kelvara::chip
