#include "Platform/Chip/software/TraceEntry.h"

namespace kelvara::chip::software {

std::string commandName(const CommandApdu& command)
{
    switch (command.ins) {
    case 0x22:
        return command.p2 == 0xA6 ? "MSE:Set KAT" : "MSE:Set AT";
    case 0x82:
        return "EXTERNAL AUTHENTICATE";
    case 0x84:
        return "GET CHALLENGE";
    case 0x86:
        return "GENERAL AUTHENTICATE";
    case 0x88:
        return "INTERNAL AUTHENTICATE";
    case 0xA4:
        return "SELECT";
    case 0xB0:
    case 0xB1:
        return "READ BINARY";
    default:
        return {};
    }
}

} // namespace kelvara::chip::software
