#pragma once

#include "Platform/Capture/AVCaptureDevice.h"

#include <QImage>

#include <memory>

namespace kelvara::demo {

/// A camera that passes on what another one delivers and looks at it on the way: how many frames, how fast, how large,
/// and which was the last. Main thread.
class FrameTap final : public AVCaptureDevice
{
public:
    explicit FrameTap(std::shared_ptr<AVCaptureDevice> camera);
    ~FrameTap() override;

    [[nodiscard]] QString uniqueID() const override { return m_camera->uniqueID(); }
    [[nodiscard]] QString localizedName() const override { return m_camera->localizedName(); }
    [[nodiscard]] AVCaptureDevicePosition position() const override { return m_camera->position(); }
    [[nodiscard]] bool isConnected() const override { return m_camera->isConnected(); }
    [[nodiscard]] int sensorRotation() const override { return m_camera->sensorRotation(); }
    [[nodiscard]] bool isInUseByAnotherApplication() const override { return m_camera->isInUseByAnotherApplication(); }
    [[nodiscard]] bool supportsPreset(AVCaptureSessionPreset preset) const override
    {
        return m_camera->supportsPreset(preset);
    }
    [[nodiscard]] bool supportsVideoDataOutput() const override { return m_camera->supportsVideoDataOutput(); }
    [[nodiscard]] bool hasTorch() const override { return m_camera->hasTorch(); }
    [[nodiscard]] bool isTorchActive() const override { return m_camera->isTorchActive(); }
    [[nodiscard]] bool lockForConfiguration() override { return m_camera->lockForConfiguration(); }
    void unlockForConfiguration() override { m_camera->unlockForConfiguration(); }
    [[nodiscard]] bool setTorchModeOn(float level) override { return m_camera->setTorchModeOn(level); }
    void setTorchModeOff() override { m_camera->setTorchModeOff(); }
    [[nodiscard]] bool start(AVCaptureFrameSink sink) override;
    void stop() override;

    [[nodiscard]] qint64 frames() const;
    /// Over all runs, from each one's first frame to its last; 0 before the second frame.
    [[nodiscard]] double framesPerSecond() const;
    /// As delivered, in sensor axes; empty before the first.
    [[nodiscard]] QSize frameSize() const;
    /// The last frame of this run, turned upright; null before the first.
    [[nodiscard]] QImage lastFrame() const;

private:
    struct Seen;
    std::shared_ptr<AVCaptureDevice> m_camera;
    std::shared_ptr<Seen> m_seen; ///< Shared with the sink, which the camera may keep for longer.
};

} // namespace kelvara::demo
