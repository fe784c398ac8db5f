#pragma once

#include "Platform/Chip/access/MrzKey.h"

namespace kelvara::chip {

/// What both sides of PACE know beforehand.
struct PacePassword
{
    std::uint8_t reference = 0; ///< Tag 83 of MSE:Set AT.
    Bytes secret;

    [[nodiscard]] static PacePassword fromMrz(const MrzKey& key) { return { 1, key.secret() }; }
    /// The card access number that is printed on the document.
    [[nodiscard]] static PacePassword fromCan(std::string_view digits) { return { 2, bytes(digits) }; }
};

} // namespace kelvara::chip
