#pragma once

#include "Platform/Capture/FrameBufferPool.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

class QSize;

namespace kelvara {

/// How a camera's pixels lie in memory. The four-letter names give the bytes' order.
enum class FramePixels { BGRA, RGBA, ARGB, ABGR, NV12, NV21, I420, YV12, YUYV, UYVY, Jpeg };

/// One plane of a camera's picture, as the driver tells it: nothing of it is believed before it was checked.
struct FramePlane
{
    const std::uint8_t* bytes = nullptr;
    std::size_t size = 0;
    std::size_t bytesPerRow = 0; ///< Without meaning for `Jpeg`.
};

/// A camera's picture in memory of its driver. Borrowed; chroma planes are half as large, rounded up.
struct RawFrame
{
    FramePixels pixels = FramePixels::BGRA;
    int width = 0;
    int height = 0;
    std::array<FramePlane, 3> planes;
};

/// Turns what cameras deliver into 32BGRA with alpha 255. Brightness and colour differences are taken as webcams send
/// them: BT.601, limited range. Internal; one thread at a time.
class FrameConverter
{
public:
    /// Absent for a frame that is damaged: empty, short of bytes, rows that overlap, a broken JPEG.
    [[nodiscard]] std::optional<CVPixelBuffer> convert(const RawFrame& frame);

    /// Where the pictures' memory comes from; what is done to them next takes it there too.
    [[nodiscard]] FrameBufferPool& pool() { return m_pool; }

private:
    FrameBufferPool m_pool;
};

/// The size that a JPEG's header tells; absent when the bytes are no whole JPEG.
[[nodiscard]] std::optional<QSize> jpegSize(std::span<const std::uint8_t> bytes);

} // namespace kelvara
