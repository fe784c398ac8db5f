#include "Platform/Chip/messaging/Apdu.h"

namespace kelvara::chip {

namespace {

void append16(Bytes& bytes, std::size_t number)
{
    bytes.push_back(static_cast<std::uint8_t>(number >> 8));
    bytes.push_back(static_cast<std::uint8_t>(number));
}

std::size_t number16(ByteView bytes, std::size_t at)
{
    return std::size_t { bytes[at] } << 8 | bytes[at + 1];
}

} // namespace

Bytes CommandApdu::encoded() const
{
    Bytes all { cla, ins, p1, p2 };
    const bool extended = isExtended();
    if (!data.empty()) {
        if (extended) {
            all.push_back(0);
            append16(all, data.size());
        } else {
            all.push_back(static_cast<std::uint8_t>(data.size()));
        }
        all.insert(all.end(), data.begin(), data.end());
    }
    if (le) { // the greatest number of each form is written as zero
        if (!extended) {
            all.push_back(static_cast<std::uint8_t>(*le));
        } else {
            if (data.empty())
                all.push_back(0);
            append16(all, *le);
        }
    }
    return all;
}

std::optional<CommandApdu> CommandApdu::decoded(ByteView bytes)
{
    if (bytes.size() < 4)
        return std::nullopt;
    CommandApdu command { bytes[0], bytes[1], bytes[2], bytes[3], {}, std::nullopt };
    const ByteView body = bytes.subspan(4);
    if (body.empty())
        return command;
    const auto expected = [](std::size_t number, std::uint32_t greatest) {
        return number == 0 ? greatest : static_cast<std::uint32_t>(number);
    };
    if (body.size() == 1) {
        command.le = expected(body[0], 256);
        return command;
    }
    const bool extended = body[0] == 0 && body.size() >= 3;
    if (extended && body.size() == 3) {
        command.le = expected(number16(body, 1), 65536);
        return command;
    }
    const std::size_t head = extended ? 3 : 1;
    const std::size_t size = extended ? number16(body, 1) : body[0];
    const std::size_t tail = extended ? 2 : 1;
    if (size == 0 || (body.size() != head + size && body.size() != head + size + tail))
        return std::nullopt;
    command.data = chip::bytes(body.subspan(head, size));
    if (body.size() > head + size)
        command.le = extended ? expected(number16(body, head + size), 65536) : expected(body[head + size], 256);
    return command;
}

Bytes ResponseApdu::encoded() const
{
    Bytes all = data;
    append16(all, sw);
    return all;
}

std::optional<ResponseApdu> ResponseApdu::decoded(ByteView bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    const std::size_t size = bytes.size() - 2;
    return ResponseApdu { chip::bytes(bytes.first(size)), static_cast<std::uint16_t>(number16(bytes, size)) };
}

} // namespace kelvara::chip
