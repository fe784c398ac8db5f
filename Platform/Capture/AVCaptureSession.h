#pragma once

#include "Platform/Capture/AVCaptureTypes.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace kelvara {

class AVCaptureInput;
class AVCaptureVideoDataOutput;
class AVCaptureVideoPreviewLayer;

/// Joins one camera to a video output and a preview. Main thread.
///
/// Frames count only while the session runs: what a device still sends after `stopRunning` is dropped. A camera that
/// is unplugged stops the session (`isRunning` turns false); when it is back, the session runs again unless
/// `stopRunning` was called in between. The same while something else of this process has claimed the cameras, as a
/// video call does, and while the application is in the background (`CameraArbiter`): the session is interrupted and
/// goes on afterwards. Several changes between `beginConfiguration` and `commitConfiguration` take effect together at
/// the commit.
class AVCaptureSession : public QObject
{
    Q_OBJECT
public:
    explicit AVCaptureSession(QObject* parent = nullptr);
    ~AVCaptureSession() override;

    void beginConfiguration();
    void commitConfiguration();

    // The preset is kept for those who ask. No device changes its format for it: with Qt 6.4's back end a format that
    // is set by hand brings cameras to a standstill.
    [[nodiscard]] bool canSetSessionPreset(AVCaptureSessionPreset preset) const;
    void setSessionPreset(AVCaptureSessionPreset preset);
    [[nodiscard]] AVCaptureSessionPreset sessionPreset() const;
    void setAutomaticallyConfiguresCaptureDeviceForWideColor(bool automatic);

    /// Whether the session could take the input: not for null, an input that it already has, or a device that is not
    /// connected or refuses to be used. One camera serves at a time, but that is a matter of `addInput`: a session
    /// with no input yet answers for each camera by itself.
    [[nodiscard]] bool canAddInput(const std::shared_ptr<AVCaptureInput>& input) const;
    /// Ignored for null, an input that the session has, and a second device. A device that is unplugged or in use is
    /// taken all the same: the session runs as soon as it can be had.
    void addInput(const std::shared_ptr<AVCaptureInput>& input);
    void removeInput(const std::shared_ptr<AVCaptureInput>& input);
    [[nodiscard]] const std::vector<std::shared_ptr<AVCaptureInput>>& inputs() const;

    [[nodiscard]] bool canAddOutput(const std::shared_ptr<AVCaptureVideoDataOutput>& output) const;
    void addOutput(const std::shared_ptr<AVCaptureVideoDataOutput>& output);
    [[nodiscard]] const std::vector<std::shared_ptr<AVCaptureVideoDataOutput>>& outputs() const;

    /// Starts the input's device, or as soon as it can be had; does nothing without an input. Running or not is told by
    /// `isRunning`.
    void startRunning();
    void stopRunning();
    [[nodiscard]] bool isRunning() const;

    /// The preview layers that show this session; called by the layers themselves.
    void attachPreview(AVCaptureVideoPreviewLayer* layer);
    void detachPreview(AVCaptureVideoPreviewLayer* layer);

Q_SIGNALS:
    /// The running state changed to `running`.
    void runningChanged(bool running);

private:
    /// Puts the present inputs, outputs and wishes into effect, unless a commit is still to come.
    void update();
    /// Emits `runningChanged` if there is something to tell.
    void tell();

    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
