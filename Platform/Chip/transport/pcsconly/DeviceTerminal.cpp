#include "Platform/Chip/transport/DeviceTerminal.h"

#include "Platform/Chip/transport/PcscTerminal.h"

namespace kelvara::chip {

std::shared_ptr<CardTerminal> deviceTerminal()
{
    return std::make_shared<PcscTerminal>();
}

std::string whyUnavailable()
{
    return PcscTerminal().whyUnavailable();
}

} // namespace kelvara::chip
