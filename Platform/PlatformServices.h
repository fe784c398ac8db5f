#pragma once

#include "Platform/Foundation/Export.h"

#include <QUrl>

#include <memory>

namespace kelvara {

class CameraProvider;
class ConferenceService;
class NFCReaderSession;
class UserDefaults;
class VisionDetectors;

/// Everything the view needs of the platform, as one value handed to its constructor. A host that tests itself
/// replaces what it wants (`services.cameras = std::make_shared<ReplayCameraProvider>(…)`) and leaves the rest.
/// The objects are shared with the view. Main thread.
struct KELVARA_EXPORT PlatformServices
{
    std::shared_ptr<CameraProvider> cameras; ///< Null: a device without cameras.
    std::shared_ptr<const VisionDetectors> imageAnalysis; ///< Null: nothing is ever found.
    std::shared_ptr<NFCReaderSession> nfc; ///< Null: a device without a contactless reader.
    std::shared_ptr<UserDefaults> userDefaults; ///< Null: nothing is remembered.
    /// A local file with the authorities that a chip's signer must have been certified by: a state's master list, or
    /// certificates in PEM or DER. Empty: signers are not checked, and the model says so.
    QUrl masterListURL;
    std::shared_ptr<ConferenceService> conference; ///< Null: a device without video calls.

    /// The device's own: real cameras through Qt Multimedia, OpenCV detectors, its contactless reader where one is
    /// connected or built in, stored user defaults, the web engine for calls.
    [[nodiscard]] static PlatformServices native();
};

} // namespace kelvara
