#pragma once

#include "Platform/Capture/AVCaptureTypes.h"
#include "Platform/Capture/CMSampleBuffer.h"
#include "Platform/Foundation/Export.h"

#include <QObject>
#include <QString>

#include <functional>

namespace kelvara {

/// Receives a device's pictures: 32BGRA, alpha 255 in every pixel, row 0 at the top, in the device's own axes (as the
/// sensor lies). Called on a thread of the device's choosing, one call at a time.
using AVCaptureFrameSink = std::function<void(const CMSampleBuffer&)>;

/// A camera. Made by a `CameraProvider` and shared with it; main thread unless said otherwise.
class KELVARA_EXPORT AVCaptureDevice : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual QString uniqueID() const = 0;
    [[nodiscard]] virtual QString localizedName() const = 0;
    [[nodiscard]] virtual AVCaptureDevicePosition position() const = 0;

    /// False from the moment the camera was unplugged until it is back.
    [[nodiscard]] virtual bool isConnected() const = 0;

    /// By how many degrees (0, 90, 180, 270; clockwise) a picture must be turned to stand upright in portrait. 0: the
    /// device is upright and ignores the orientation asked of its connections.
    [[nodiscard]] virtual int sensorRotation() const { return 0; }

    /// True while another application holds the camera: a session does not take it as an input.
    [[nodiscard]] virtual bool isInUseByAnotherApplication() const { return false; }
    /// Whether the pictures can come in the quality of the preset.
    [[nodiscard]] virtual bool supportsPreset(AVCaptureSessionPreset) const { return true; }
    /// Whether the pictures can be had as frames; false: a session with this camera takes no video data output.
    [[nodiscard]] virtual bool supportsVideoDataOutput() const { return true; }

    // Torch. A device without one answers false and refuses.
    [[nodiscard]] virtual bool hasTorch() const { return false; }
    [[nodiscard]] virtual bool isTorchActive() const { return false; }
    /// Exclusive access to the device's settings; false when it is refused.
    [[nodiscard]] virtual bool lockForConfiguration() { return true; }
    virtual void unlockForConfiguration() { }
    /// Level 0 < level <= 1. False when refused.
    [[nodiscard]] virtual bool setTorchModeOn(float level);
    virtual void setTorchModeOff() { }

    /// Starts delivering pictures to `sink`. False when the device cannot be opened. Used by the session only.
    [[nodiscard]] virtual bool start(AVCaptureFrameSink sink) = 0;

    /// Stops. When it returns, no call of the sink is under way and none follows.
    virtual void stop() = 0;

Q_SIGNALS:
    /// The camera was unplugged (or its source ended for good) or is back. Emitted on the main thread.
    void connectedChanged(bool connected);
    /// A session has let go of the camera: one that waits for it may start it now. Emitted on the main
    /// thread, a turn of the event loop later.
    void released();
};

} // namespace kelvara
