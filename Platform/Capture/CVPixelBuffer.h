#pragma once

#include "Platform/Foundation/Export.h"

#include <QSize>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelvara {

/// 'BGRA' as a four-character code: 32-bit pixels, blue first in memory.
inline constexpr std::uint32_t kCVPixelFormatType_32BGRA = 0x42475241;

/// One camera picture in memory: rows of pixels with a stride. A shared value: copies refer to the same bytes, which
/// live as long as the last copy. Pixels are never written once a buffer has been delivered, so any thread may read.
/// Row 0 is the picture's top.
class KELVARA_EXPORT CVPixelBuffer
{
public:
    CVPixelBuffer() = default;

    /// A buffer over bytes that `owner` keeps alive. `bytes` may be null (a damaged frame).
    CVPixelBuffer(std::shared_ptr<const void> owner, const std::uint8_t* bytes, int width, int height,
        std::size_t bytesPerRow, std::uint32_t pixelFormat = kCVPixelFormatType_32BGRA);

    /// Locks the bytes for reading; to be paired with `unlockBaseAddress`. The count is kept for diagnosis only: the
    /// bytes stay readable as long as the buffer lives. False when there are no bytes.
    bool lockBaseAddress() const;
    void unlockBaseAddress() const;
    [[nodiscard]] int lockCount() const;

    [[nodiscard]] const std::uint8_t* baseAddress() const { return m_bytes; }
    [[nodiscard]] std::size_t bytesPerRow() const { return m_bytesPerRow; }
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] QSize size() const { return { m_width, m_height }; }
    [[nodiscard]] std::uint32_t pixelFormat() const { return m_pixelFormat; }

    /// What keeps the bytes alive; an image that wraps them holds this.
    [[nodiscard]] std::shared_ptr<const void> owner() const { return m_owner; }

private:
    struct Locks;
    std::shared_ptr<const void> m_owner;
    std::shared_ptr<Locks> m_locks;
    const std::uint8_t* m_bytes = nullptr;
    std::size_t m_bytesPerRow = 0;
    int m_width = 0;
    int m_height = 0;
    std::uint32_t m_pixelFormat = kCVPixelFormatType_32BGRA;
};

} // namespace kelvara
