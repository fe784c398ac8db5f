#include "Platform/Chip/transport/DeviceTerminal.h"

#include "Platform/Chip/transport/PcscTerminal.h"
#include "Platform/Chip/transport/qtnfc/QtNfcTerminal.h"

namespace kelvara::chip {

std::shared_ptr<CardTerminal> deviceTerminal()
{
    if (auto builtIn = std::make_shared<QtNfcTerminal>(); builtIn->isSupported())
        return builtIn;
    return std::make_shared<PcscTerminal>();
}

std::string whyUnavailable()
{
    if (QtNfcTerminal().isSupported())
        return "the device's contactless reader is turned off.";
    return PcscTerminal().whyUnavailable();
}

} // namespace kelvara::chip
