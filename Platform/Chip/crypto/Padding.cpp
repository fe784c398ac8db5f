#include "Platform/Chip/crypto/Padding.h"

namespace kelvara::chip {

Bytes padded(ByteView message, std::size_t blockSize)
{
    Bytes result;
    result.reserve(message.size() + blockSize); // one allocation: no copy is left behind by growth
    result.assign(message.begin(), message.end());
    result.push_back(0x80);
    result.resize((result.size() + blockSize - 1) / blockSize * blockSize, 0);
    return result;
}

std::optional<Bytes> unpadded(ByteView message)
{
    std::size_t size = message.size();
    while (size > 0 && message[size - 1] == 0)
        --size;
    if (size == 0 || message[size - 1] != 0x80)
        return std::nullopt;
    return bytes(message.first(size - 1));
}

} // namespace kelvara::chip
