#pragma once

#include "Platform/Capture/CMSampleBuffer.h"

#include <optional>
#include <vector>

namespace kelvara {

class FrameBufferPool;

/// One frame on its way to several receivers: turns and mirrors it as each connection asks, and does the same work
/// only once. Internal; one thread.
class FrameTurner
{
public:
    /// `pool` is borrowed.
    FrameTurner(const CMSampleBuffer& frame, FrameBufferPool& pool) : m_frame(frame), m_pool(pool) { }

    [[nodiscard]] const CMSampleBuffer& frame() const { return m_frame; }

    /// The picture turned clockwise by 0, 90, 180 or 270 degrees and then mirrored about the vertical axis. For 0 and
    /// unmirrored these are the device's very bytes. Absent when there is no picture that could be turned.
    [[nodiscard]] std::optional<CVPixelBuffer> turned(int rotation, bool mirrored);

    /// The same if it costs nothing because it has been made already.
    [[nodiscard]] std::optional<CVPixelBuffer> alreadyTurned(int rotation, bool mirrored) const;

private:
    struct Made
    {
        int rotation;
        bool mirrored;
        CVPixelBuffer picture;
    };
    const CMSampleBuffer& m_frame;
    FrameBufferPool& m_pool;
    std::vector<Made> m_made;
};

/// True for a picture whose bytes, size and stride fit each other, so that it may be read.
[[nodiscard]] bool isReadable(const CVPixelBuffer& picture);

/// The picture turned clockwise by 0, 90, 180 or 270 degrees and then mirrored, in memory of the pool. Absent when
/// the picture is not readable.
[[nodiscard]] std::optional<CVPixelBuffer> turnedPicture(
    const CVPixelBuffer& picture, int rotation, bool mirrored, FrameBufferPool& pool);

} // namespace kelvara
