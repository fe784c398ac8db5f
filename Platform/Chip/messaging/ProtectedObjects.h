#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

namespace kelvara::chip {

/// Tags of secure messaging (ISO/IEC 7816-4 §10.2).
namespace protection {
inline constexpr std::uint32_t encodedCryptogram = 0x85; ///< Of commands with odd INS, whose data are data objects.
inline constexpr std::uint32_t cryptogram = 0x87; ///< After a byte that tells the padding.
inline constexpr std::uint32_t checksum = 0x8E;
inline constexpr std::uint32_t expectedLength = 0x97;
inline constexpr std::uint32_t status = 0x99;
inline constexpr std::uint8_t paddingIndicator = 0x01;
inline constexpr std::uint8_t classBits = 0x0C;
} // namespace protection

/// The header of a command as the checksum covers it: four bytes, padded to a block.
[[nodiscard]] Bytes protectedHeader(const CommandApdu& command, CipherAlgorithm cipher);

/// Data under encryption, as object 85 for an odd instruction and 87 else; empty for no data.
[[nodiscard]] Bytes dataObject(const SessionKeys& keys, std::uint8_t ins, ByteView data);

/// A message's data objects after its checksum was found right. Views into the message.
struct CheckedObjects
{
    ByteView data; ///< The cryptogram alone.
    ByteView expectedLength;
    ByteView status;
};

enum class ObjectsProblem { None, BadChecksum, Malformed };

/// Checks the closing checksum object over everything before it, then takes the objects apart: each at most once and
/// none that is unknown.
[[nodiscard]] ObjectsProblem checkObjects(
    const SessionKeys& keys, ByteView head, ByteView message, CheckedObjects& objects);

} // namespace kelvara::chip
