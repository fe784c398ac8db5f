#include "Platform/Chip/Bytes.h"

#include <algorithm>
#include <openssl/crypto.h>

namespace kelvara::chip {

namespace {

int valueOf(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

void wipe(void* memory, std::size_t size) noexcept
{
    OPENSSL_cleanse(memory, size);
}

Bytes bytes(ByteView view)
{
    return Bytes(view.begin(), view.end());
}

Bytes bytes(std::string_view text)
{
    return Bytes(text.begin(), text.end());
}

Bytes joined(std::initializer_list<ByteView> parts)
{
    std::size_t size = 0;
    for (const ByteView part : parts)
        size += part.size();
    Bytes all;
    all.reserve(size);
    for (const ByteView part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

bool equalInConstantTime(ByteView one, ByteView other)
{
    return one.size() == other.size() && (one.empty() || CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0);
}

Bytes bigEndian(std::uint64_t number)
{
    Bytes digits;
    do {
        digits.push_back(static_cast<std::uint8_t>(number));
        number >>= 8;
    } while (number != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string toHex(ByteView view)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * view.size());
    for (const std::uint8_t byte : view) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::optional<Bytes> fromHex(std::string_view digits)
{
    Bytes result;
    for (std::size_t i = 0; i < digits.size();) {
        if (digits[i] == ' ') {
            ++i;
            continue;
        }
        if (i + 1 == digits.size())
            return std::nullopt;
        const int high = valueOf(digits[i]);
        const int low = valueOf(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        result.push_back(static_cast<std::uint8_t>(high << 4 | low));
        i += 2;
    }
    return result;
}

} // namespace kelvara::chip
