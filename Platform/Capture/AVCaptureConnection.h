#pragma once

#include "Platform/Capture/AVCaptureTypes.h"

#include <atomic>

namespace kelvara {

/// The way from a session's input to an output or a preview layer: how pictures are turned and mirrored on it.
/// Written on the main thread, read on any.
class AVCaptureConnection
{
public:
    /// False for upright devices; setting an orientation is then ignored and `LandscapeRight` is reported.
    [[nodiscard]] bool isVideoOrientationSupported() const { return m_sensorRotation.load() != 0; }
    [[nodiscard]] AVCaptureVideoOrientation videoOrientation() const
    {
        return isVideoOrientationSupported() ? m_orientation.load() : AVCaptureVideoOrientation::LandscapeRight;
    }
    void setVideoOrientation(AVCaptureVideoOrientation orientation) { m_orientation = orientation; }

    /// Mirroring about the picture's upright vertical axis, applied after turning.
    [[nodiscard]] bool isVideoMirrored() const { return m_mirrored.load(); }
    void setVideoMirrored(bool mirrored) { m_mirrored = mirrored; }

    /// The device's `sensorRotation`, kept up to date by the session at each commit.
    [[nodiscard]] int sensorRotation() const { return m_sensorRotation.load(); }
    void setSensorRotation(int degrees) { m_sensorRotation = degrees; }

    /// By how many degrees clockwise a picture is turned on this connection: 0 for upright devices.
    [[nodiscard]] int rotation() const;

private:
    std::atomic<AVCaptureVideoOrientation> m_orientation { AVCaptureVideoOrientation::LandscapeRight };
    std::atomic<bool> m_mirrored { false };
    std::atomic<int> m_sensorRotation { 0 };
};

} // namespace kelvara
