#pragma once

#include "Platform/Capture/CVPixelBuffer.h"

#include <chrono>
#include <optional>

namespace kelvara {

/// One delivery of the camera: a picture, if there is one, and when it was taken. A value, any thread.
class CMSampleBuffer
{
public:
    CMSampleBuffer() = default;
    explicit CMSampleBuffer(CVPixelBuffer image, std::chrono::microseconds time = {})
        : m_image(std::move(image)), m_time(time)
    { }

    /// The picture; absent for a delivery without one.
    [[nodiscard]] const std::optional<CVPixelBuffer>& imageBuffer() const { return m_image; }

    /// Time since the device was started.
    [[nodiscard]] std::chrono::microseconds presentationTime() const { return m_time; }

private:
    std::optional<CVPixelBuffer> m_image;
    std::chrono::microseconds m_time {};
};

} // namespace kelvara
