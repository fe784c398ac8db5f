#pragma once

#include "Platform/Capture/FrameBufferPool.h"
#include "Platform/Capture/FrameConverter.h"
#include "Platform/Capture/ReplayCamera.h"

#include <list>
#include <optional>
#include <vector>

namespace kelvara {

/// Makes a replay camera's frames from its source's pictures: turned back as the sensor lies, scaled and cut to the
/// wanted size, laid out as the options say and converted from there. Internal; the camera's own thread.
class ReplayFramer
{
public:
    /// Frames whose pictures may come again are kept up to `cacheBytes`, the newest in any case.
    ReplayFramer(const ReplayCameraOptions& options, std::size_t cacheBytes)
        : m_options(options), m_cacheBytes(cacheBytes)
    { }

    /// The frame of a picture; absent when it cannot be made.
    [[nodiscard]] std::optional<CVPixelBuffer> frame(const QImage& picture);

private:
    struct Kept
    {
        QImage picture; ///< Held so that its key cannot come to mean other pixels.
        CVPixelBuffer frame;
    };

    [[nodiscard]] std::optional<CVPixelBuffer> make(const QImage& picture);

    const ReplayCameraOptions m_options;
    const std::size_t m_cacheBytes;
    std::list<Kept> m_kept; ///< The newest first.
    std::size_t m_keptBytes = 0;
    FrameBufferPool m_pool;
    FrameConverter m_converter;
    std::vector<std::uint8_t> m_laidOut;
};

} // namespace kelvara
