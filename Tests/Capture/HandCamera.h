#pragma once

#include "Platform/Capture/AVCaptureDevice.h"

#include <QImage>

#include <memory>
#include <utility>

namespace kelvara::test {

/// A camera that sends when the test says so, on the test's thread, and that keeps sending after it was stopped, as
/// real ones do.
class HandCamera final : public AVCaptureDevice
{
public:
    explicit HandCamera(AVCaptureDevicePosition position = AVCaptureDevicePosition::Back, int sensorRotation = 0)
        : m_position(position), m_sensorRotation(sensorRotation)
    { }

    [[nodiscard]] QString uniqueID() const override { return QStringLiteral("hand"); }
    [[nodiscard]] QString localizedName() const override { return QStringLiteral("Hand camera"); }
    [[nodiscard]] AVCaptureDevicePosition position() const override { return m_position; }
    [[nodiscard]] bool isConnected() const override { return true; }
    [[nodiscard]] int sensorRotation() const override { return m_sensorRotation; }
    [[nodiscard]] bool supportsPreset(AVCaptureSessionPreset preset) const override
    {
        return preset == AVCaptureSessionPreset::High;
    }
    [[nodiscard]] bool start(AVCaptureFrameSink sink) override
    {
        m_sink = std::move(sink);
        ++starts;
        return true;
    }
    void stop() override { ++stops; }

    void send(const CMSampleBuffer& frame) const
    {
        if (m_sink)
            m_sink(frame);
    }

    void send(const QImage& image) const
    {
        const auto owner = std::make_shared<const QImage>(image);
        send(CMSampleBuffer(CVPixelBuffer(owner, owner->constBits(), owner->width(), owner->height(),
            static_cast<std::size_t>(owner->bytesPerLine()))));
    }

    int starts = 0;
    int stops = 0;

private:
    const AVCaptureDevicePosition m_position;
    const int m_sensorRotation;
    AVCaptureFrameSink m_sink;
};

} // namespace kelvara::test
