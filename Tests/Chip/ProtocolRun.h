#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/crypto/RandomSource.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace kelvara::chip {

inline Bytes hex(std::string_view digits)
{
    return fromHex(digits).value();
}

/// Gives these strings one after the other, and a failed test for any other wish.
inline RandomSource scripted(std::vector<Bytes> script)
{
    const auto rest = std::make_shared<std::vector<Bytes>>(script.rbegin(), script.rend());
    return [rest](std::size_t count) {
        if (rest->empty() || rest->back().size() != count) {
            ADD_FAILURE() << "no random string of " << count << " bytes was foreseen";
            return Bytes(count, 1);
        }
        Bytes next = rest->back();
        rest->pop_back();
        return next;
    };
}

using Answers = std::function<ResponseApdu(const CommandApdu&)>;

/// Runs a protocol to its end against a chip, as bytes over the air.
inline void run(AccessProtocol& protocol, const Answers& chip)
{
    for (int step = 0; protocol.command() && step < 10; ++step) {
        const auto command = CommandApdu::decoded(protocol.command()->encoded());
        ASSERT_TRUE(command);
        protocol.receive(*ResponseApdu::decoded(chip(*command).encoded()));
    }
    ASSERT_FALSE(protocol.command());
}

} // namespace kelvara::chip
