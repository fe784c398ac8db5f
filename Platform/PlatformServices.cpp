#include "Platform/PlatformServices.h"

#include "Platform/Capture/QtCameraProvider.h"
#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Vision/VisionDetectors.h"

namespace kelvara {

PlatformServices PlatformServices::native()
{
    return {
        .cameras = QtCameraProvider::shared(),
        .imageAnalysis = VisionDetectors::native(),
        .nfc = NFCReaderSession::native(),
        .userDefaults = UserDefaults::standard(),
        .masterListURL = {},
        .conference = ConferenceService::native(),
    };
}

} // namespace kelvara
