#include "Platform/Chip/software/ChipFaults.h"

#include <algorithm>
#include <array>

namespace kelvara::chip::software {

namespace {

constexpr std::array<std::string_view, 7> kNames { "tagLost", "bitFlip", "statusWord", "garbage", "emptyAnswer",
    "sessionEnd", "delay" };

ChipFault faultAt(unsigned command, ChipFault::Kind kind)
{
    ChipFault fault;
    fault.kind = kind;
    fault.command = command;
    return fault;
}

} // namespace

ChipFault ChipFault::tagLost(unsigned command, Counting counting)
{
    ChipFault fault = faultAt(command, Kind::TagLost);
    fault.counting = counting;
    return fault;
}

ChipFault ChipFault::bitFlip(unsigned command, std::optional<std::size_t> byte, unsigned bit)
{
    ChipFault fault = faultAt(command, Kind::BitFlip);
    fault.byte = byte;
    fault.bit = bit;
    return fault;
}

ChipFault ChipFault::statusWord(unsigned command, std::uint16_t sw)
{
    ChipFault fault = faultAt(command, Kind::StatusWord);
    fault.sw = sw;
    return fault;
}

ChipFault ChipFault::garbage(unsigned command, std::size_t size)
{
    ChipFault fault = faultAt(command, Kind::Garbage);
    fault.size = size;
    return fault;
}

ChipFault ChipFault::emptyAnswer(unsigned command)
{
    return faultAt(command, Kind::EmptyAnswer);
}

ChipFault ChipFault::sessionEnd(unsigned command, std::uint16_t sw)
{
    ChipFault fault = faultAt(command, Kind::SessionEnd);
    fault.sw = sw;
    return fault;
}

ChipFault ChipFault::delayed(unsigned command, std::chrono::milliseconds delay)
{
    ChipFault fault = faultAt(command, Kind::Delay);
    fault.delay = delay;
    return fault;
}

std::string_view nameOf(ChipFault::Kind kind)
{
    return kNames[static_cast<std::size_t>(kind)];
}

std::optional<ChipFault::Kind> faultOfName(std::string_view name)
{
    const auto* found = std::find(kNames.begin(), kNames.end(), name);
    return found == kNames.end() ? std::nullopt : std::optional(static_cast<ChipFault::Kind>(found - kNames.begin()));
}

} // namespace kelvara::chip::software
