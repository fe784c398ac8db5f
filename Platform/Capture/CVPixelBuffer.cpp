#include "Platform/Capture/CVPixelBuffer.h"

#include <atomic>
#include <utility>

namespace kelvara {

struct CVPixelBuffer::Locks
{
    std::atomic<int> count { 0 };
};

CVPixelBuffer::CVPixelBuffer(std::shared_ptr<const void> owner, const std::uint8_t* bytes, int width, int height,
    std::size_t bytesPerRow, std::uint32_t pixelFormat)
    : m_owner(std::move(owner)), m_locks(std::make_shared<Locks>()), m_bytes(bytes), m_bytesPerRow(bytesPerRow),
      m_width(width), m_height(height), m_pixelFormat(pixelFormat)
{ }

bool CVPixelBuffer::lockBaseAddress() const
{
    if (!m_bytes)
        return false;
    ++m_locks->count;
    return true;
}

void CVPixelBuffer::unlockBaseAddress() const
{
    if (m_bytes)
        --m_locks->count;
}

int CVPixelBuffer::lockCount() const
{
    return m_locks ? m_locks->count.load() : 0;
}

} // namespace kelvara
