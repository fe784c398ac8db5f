#include "Platform/Capture/FrameBufferPool.h"

#include <mutex>
#include <new>
#include <vector>

namespace kelvara {

namespace {

/// A frame with the delegate, one in the preview, one being shown, one being made, and a little air.
constexpr std::size_t kShelved = 6;
constexpr std::int64_t kLargestPicture = 64 * 1024 * 1024;

struct FreeBytes
{
    void operator()(std::uint8_t* bytes) const { ::operator delete (bytes, std::align_val_t { 64 }); }
};
using Bytes = std::unique_ptr<std::uint8_t, FreeBytes>;

} // namespace

struct FrameBufferPool::Shelf
{
    /// Takes memory back; memory of a size no longer asked for is freed.
    void put(Bytes bytes, std::size_t size)
    {
        const std::lock_guard lock(mutex);
        if (size == wanted && free.size() < kShelved)
            free.push_back(std::move(bytes));
    }

    Bytes get(std::size_t size)
    {
        const std::lock_guard lock(mutex);
        if (size != wanted) {
            free.clear();
            wanted = size;
        }
        if (!free.empty()) {
            Bytes bytes = std::move(free.back());
            free.pop_back();
            return bytes;
        }
        return Bytes(static_cast<std::uint8_t*>(::operator new (size, std::align_val_t { 64 }, std::nothrow)));
    }

    std::mutex mutex;
    std::vector<Bytes> free;
    std::size_t wanted = 0;
};

FrameBufferPool::FrameBufferPool() : m_shelf(std::make_shared<Shelf>()) { }

FrameBufferPool::Buffer FrameBufferPool::take(int width, int height)
{
    if (width <= 0 || height <= 0 || std::int64_t { width } * height > kLargestPicture)
        return {};
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    Bytes bytes = m_shelf->get(size);
    if (!bytes)
        return {};
    return { std::shared_ptr<std::uint8_t>(
                 bytes.release(), [shelf = m_shelf, size](std::uint8_t* back) { shelf->put(Bytes(back), size); }),
        width, height };
}

CVPixelBuffer FrameBufferPool::Buffer::picture() const
{
    return CVPixelBuffer(bytes, bytes.get(), width, height, bytesPerRow());
}

} // namespace kelvara
