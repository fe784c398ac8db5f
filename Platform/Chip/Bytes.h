#pragma once

#include "Platform/Foundation/Export.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara::chip {

/// Overwrites memory so that the compiler cannot leave it out. Any thread.
KELVARA_EXPORT void wipe(void* memory, std::size_t size) noexcept;

/// Hands memory back only after it was overwritten: keys, nonces and what a chip says are never left behind.
template<typename T> struct WipingAllocator
{
    using value_type = T;

    WipingAllocator() = default;
    template<typename U> WipingAllocator(const WipingAllocator<U>&) noexcept { }

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t count) noexcept
    {
        wipe(memory, count * sizeof(T));
        ::operator delete(memory);
    }
    template<typename U> bool operator==(const WipingAllocator<U>&) const noexcept { return true; }
};

/// A string of bytes that is wiped when it goes. The one type for keys, APDUs and files of a chip.
using Bytes = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;
using ByteView = std::span<const std::uint8_t>;

[[nodiscard]] KELVARA_EXPORT Bytes bytes(ByteView view);
/// The characters' own bytes (ASCII, UTF-8).
[[nodiscard]] KELVARA_EXPORT Bytes bytes(std::string_view text);

/// All parts in order.
[[nodiscard]] KELVARA_EXPORT Bytes joined(std::initializer_list<ByteView> parts);

/// The first `count` bytes, or all where there are fewer.
[[nodiscard]] inline ByteView first(ByteView view, std::size_t count)
{
    return view.first(count < view.size() ? count : view.size());
}

/// Whether both are equal, in a time that depends on the length only.
[[nodiscard]] KELVARA_EXPORT bool equalInConstantTime(ByteView one, ByteView other);

/// A big-endian number without leading zeros; at least one byte.
[[nodiscard]] KELVARA_EXPORT Bytes bigEndian(std::uint64_t number);

/// Upper-case hexadecimal digits.
[[nodiscard]] KELVARA_EXPORT std::string toHex(ByteView view);
/// Two hexadecimal digits a byte, either case, spaces between bytes allowed; absent for anything else.
[[nodiscard]] KELVARA_EXPORT std::optional<Bytes> fromHex(std::string_view digits);

} // namespace kelvara::chip
