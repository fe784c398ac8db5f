#include "Platform/Chip/transport/AnswerToReset.h"

#include <bit>

namespace kelvara::chip {

namespace {

constexpr std::uint8_t kCapabilities = 0x7;
constexpr std::uint8_t kExtendedLength = 0x40;

} // namespace

ByteView historicalBytes(ByteView answerToReset)
{
    if (answerToReset.size() < 2)
        return {};
    const std::size_t count = answerToReset[1] & 0x0F;
    std::size_t at = 2;
    // Each group of interface bytes says in its last one whether another group follows.
    for (unsigned present = answerToReset[1] >> 4; present != 0;) {
        const bool another = (present & 8) != 0;
        at += static_cast<std::size_t>(std::popcount(present));
        if (at > answerToReset.size())
            return {};
        present = another ? answerToReset[at - 1] >> 4U : 0U;
    }
    return at + count <= answerToReset.size() ? answerToReset.subspan(at, count) : ByteView();
}

bool announcesExtendedLength(ByteView answerToReset)
{
    const ByteView bytes = historicalBytes(answerToReset);
    if (bytes.empty() || (bytes[0] != 0x00 && bytes[0] != 0x80))
        return false;
    // Compact TLV; with the category indicator 00, three status bytes stand at the end.
    const std::size_t end = bytes[0] == 0x00 && bytes.size() >= 4 ? bytes.size() - 3 : bytes.size();
    for (std::size_t at = 1; at < end; at += 1U + (bytes[at] & 0x0F)) {
        const std::size_t length = bytes[at] & 0x0F;
        if (at + length >= end + (length == 0 ? 1 : 0))
            return false;
        if (bytes[at] >> 4 == kCapabilities && length >= 3)
            return (bytes[at + 3] & kExtendedLength) != 0;
    }
    return false;
}

} // namespace kelvara::chip
