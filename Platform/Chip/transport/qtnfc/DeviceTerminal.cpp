#include "Platform/Chip/transport/DeviceTerminal.h"

#include "Platform/Chip/transport/PcscTerminal.h"
#include "Platform/Chip/transport/qtnfc/QtNfcTerminal.h"

#include <QString>
#include <QSysInfo>

namespace kelvara::chip {

namespace {

/// On desktops Qt's contactless module goes through PC/SC as well, where it has a back end at all, but without taking
/// the card for itself.
bool hasBuiltInReader()
{
    const QString system = QSysInfo::productType();
    return (system == QLatin1String("android") || system == QLatin1String("ios")) && QtNfcTerminal().isSupported();
}

} // namespace

std::shared_ptr<CardTerminal> deviceTerminal()
{
    if (hasBuiltInReader())
        return std::make_shared<QtNfcTerminal>();
    return std::make_shared<PcscTerminal>();
}

std::string whyUnavailable()
{
    if (hasBuiltInReader())
        return "the device's contactless reader is turned off.";
    return PcscTerminal().whyUnavailable();
}

} // namespace kelvara::chip
