#include "KycSignals.h"

#include <Platform/Chip/NFCPassportModel.h>

void KycSignals::didReadNfc(kelvara::QorvelKycView&, const kelvara::NFCPassportModel& chip)
{
    Q_EMIT chipRead(chip.faceImage);
}
