#pragma once

#include "Platform/Capture/CVPixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelvara {

/// Memory for 32-bit pictures that is used again: a buffer goes back when its last holder lets go, so that a stream
/// of frames does not allocate. Buffers may outlive the pool. Internal; any thread.
class FrameBufferPool
{
public:
    /// Memory to write one picture into, before anyone else sees it. Rows lie 4 · width bytes apart.
    struct Buffer
    {
        std::shared_ptr<std::uint8_t> bytes;
        int width = 0;
        int height = 0;

        [[nodiscard]] explicit operator bool() const { return bytes != nullptr; }
        [[nodiscard]] std::size_t bytesPerRow() const { return static_cast<std::size_t>(width) * 4; }
        /// The finished picture; it is not to be written any more.
        [[nodiscard]] CVPixelBuffer picture() const;
    };

    FrameBufferPool();

    /// Memory for a picture of that size, its content undefined; empty when the size is empty or beyond what a camera
    /// delivers.
    [[nodiscard]] Buffer take(int width, int height);

private:
    struct Shelf;
    std::shared_ptr<Shelf> m_shelf;
};

} // namespace kelvara
