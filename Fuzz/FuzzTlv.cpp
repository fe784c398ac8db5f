#include "Platform/Chip/Tlv.h"

#include <cstdlib>

using namespace kelvara::chip;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Every object lies within its level, and is found again when written anew.
void read(ByteView level, int depth)
{
    TlvReader reader(level);
    const std::uint8_t* at = level.data();
    while (const auto object = reader.next()) {
        require(
            object->whole.data() >= at && object->whole.data() + object->whole.size() <= level.data() + level.size());
        require(object->value.data() + object->value.size() == object->whole.data() + object->whole.size());
        at = object->whole.data() + object->whole.size();
        require(tlvSize(object->whole) == object->whole.size());
        const Bytes written = makeTlv(object->tag, object->value);
        require(written.size() <= object->whole.size());
        const auto again = findTlv(written, object->tag);
        require(again && bytes(again->value) == bytes(object->value));
        if (object->isConstructed() && depth < 20)
            read(object->value, depth + 1);
    }
    require(allTlvs(level).has_value() == !reader.failed());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ByteView input(data, size);
    read(input, 0);
    for (std::size_t count = 0; count < 8 && count < size; ++count)
        static_cast<void>(tlvSize(input.first(count)));
    return 0;
}
