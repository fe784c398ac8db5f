#pragma once

#include "Platform/Chip/access/ChipAuthentication.h"
#include "Platform/Chip/messaging/Apdu.h"

namespace kelvara::chip {

/// Chip authentication as a chip does it: the other side of `ChipAuthentication`. Not shared between threads.
class ChipKeyAgreement
{
public:
    /// A key of DG14 with its private part.
    struct Key
    {
        ChipAuthenticationSelection announced;
        Bytes privateKey;
    };

    explicit ChipKeyAgreement(std::vector<Key> keys) : m_keys(std::move(keys)) { }

    /// Whether the command belongs to it: MSE:Set KAT, MSE:Set AT for internal authentication, or GENERAL AUTHENTICATE
    /// after that.
    [[nodiscard]] bool isFor(const CommandApdu& command) const;
    [[nodiscard]] ResponseApdu answer(const CommandApdu& command);

    /// The keys that were agreed, once. The answer they came with still goes through the session before.
    [[nodiscard]] std::optional<SessionKeys> takeSession();

private:
    ResponseApdu agree(const Key& key, ByteView terminalKey);

    std::vector<Key> m_keys;
    std::optional<std::size_t> m_selected;
    std::optional<SessionKeys> m_session;
};

} // namespace kelvara::chip
