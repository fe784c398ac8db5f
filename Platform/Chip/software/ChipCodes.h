#pragma once

#include <cstdint>

/// What the parts of the software chip that open it have in common of ISO/IEC 7816-4 (§5.4.2, §5.6).
namespace kelvara::chip::codes {

inline constexpr std::uint8_t manageSecurityEnvironment = 0x22;
inline constexpr std::uint8_t generalAuthenticate = 0x86;

inline constexpr std::uint16_t success = 0x9000;
inline constexpr std::uint16_t authenticationFailed = 0x6300;
inline constexpr std::uint16_t wrongLength = 0x6700;
inline constexpr std::uint16_t conditionsNotSatisfied = 0x6985;
inline constexpr std::uint16_t wrongData = 0x6A80;
inline constexpr std::uint16_t unknownReference = 0x6A88;

} // namespace kelvara::chip::codes
