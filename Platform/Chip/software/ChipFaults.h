#pragma once

#include "Platform/Foundation/Export.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kelvara::chip::software {

/// One thing that goes wrong with one command. A value.
struct KELVARA_EXPORT ChipFault
{
    enum class Kind {
        TagLost, ///< The card leaves the field: the command is not carried out and there is no answer.
        BitFlip, ///< One bit of the answer is another.
        StatusWord, ///< The command is carried out, but answered with nothing than this status word, in the clear.
        Garbage, ///< The command is carried out, but answered with so many random bytes.
        EmptyAnswer, ///< The command is carried out, but answered with nothing at all, not even a status word.
        SessionEnd, ///< The command is refused with a status word in the clear, and the session is over.
        Delay, ///< The answer comes so much later.
    };
    /// What a command's number counts.
    enum class Counting {
        ChipLife, ///< Commands since the chip was made: the fault comes once.
        Presentation, ///< Commands since the chip was powered up: the fault comes every time.
    };

    Kind kind = Kind::TagLost;
    unsigned command = 1; ///< Which one, the first being 1.
    Counting counting = Counting::ChipLife;

    /// BitFlip: counted from the answer's first byte, and round again at its end (so that any number hits); absent: a
    /// place that the seed chooses.
    std::optional<std::size_t> byte;
    unsigned bit = 0; ///< BitFlip: 0 is the lowest of the byte, 7 the highest.
    std::uint16_t sw = 0x6F00; ///< StatusWord, SessionEnd.
    std::size_t size = 20; ///< Garbage: at most 65,538 bytes.
    std::chrono::milliseconds delay { 0 }; ///< Delay: at most a minute.

    [[nodiscard]] static ChipFault tagLost(unsigned command, Counting counting = Counting::ChipLife);
    [[nodiscard]] static ChipFault bitFlip(unsigned command, std::optional<std::size_t> byte = {}, unsigned bit = 0);
    [[nodiscard]] static ChipFault statusWord(unsigned command, std::uint16_t sw);
    [[nodiscard]] static ChipFault garbage(unsigned command, std::size_t size);
    [[nodiscard]] static ChipFault emptyAnswer(unsigned command);
    [[nodiscard]] static ChipFault sessionEnd(unsigned command, std::uint16_t sw = 0x6700);
    [[nodiscard]] static ChipFault delayed(unsigned command, std::chrono::milliseconds delay);
};

/// "tagLost" and so on, as files of profiles write them.
[[nodiscard]] KELVARA_EXPORT std::string_view nameOf(ChipFault::Kind kind);
[[nodiscard]] KELVARA_EXPORT std::optional<ChipFault::Kind> faultOfName(std::string_view name);

/// How a chip and the way to it fail. A value.
struct ChipFaults
{
    std::vector<ChipFault> list;
    std::chrono::milliseconds delay { 0 }; ///< Before every answer, as slow chips take it; at most a minute.
    /// A read that is refused is refused in the clear and ends the session, as some chips do: afterwards everything is
    /// locked.
    bool refusedReadEndsSession = false;
    std::uint32_t seed = 1; ///< Of what is random about faults.
};

} // namespace kelvara::chip::software
