#include "Platform/Chip/Tlv.h"

namespace kelvara::chip {

namespace {

struct Head
{
    Tag tag = 0;
    std::size_t length = 0;
    std::size_t size = 0; ///< Of tag and length together.
};

enum class HeadProblem { None, TooShort, Malformed };

HeadProblem readHead(ByteView bytes, Head& head)
{
    std::size_t at = 0;
    if (bytes.empty())
        return HeadProblem::TooShort;
    head.tag = bytes[at++];
    if ((head.tag & 0x1F) == 0x1F) {
        do {
            if (at == 3)
                return HeadProblem::Malformed;
            if (at == bytes.size())
                return HeadProblem::TooShort;
            head.tag = head.tag << 8 | bytes[at];
        } while (bytes[at++] & 0x80);
    }
    if (at == bytes.size())
        return HeadProblem::TooShort;
    const std::uint8_t form = bytes[at++];
    head.length = form;
    if (form & 0x80) {
        const std::size_t count = form & 0x7F;
        if (count == 0 || count > 4)
            return HeadProblem::Malformed; // endless and absurd lengths do not occur on chips
        if (bytes.size() - at < count)
            return HeadProblem::TooShort;
        head.length = 0;
        for (std::size_t i = 0; i < count; ++i)
            head.length = head.length << 8 | bytes[at++];
    }
    head.size = at;
    return HeadProblem::None;
}

} // namespace

bool Tlv::isConstructed() const
{
    return !whole.empty() && (whole[0] & 0x20) != 0;
}

std::optional<Tlv> TlvReader::next()
{
    while (!m_rest.empty() && m_rest.front() == 0)
        m_rest = m_rest.subspan(1);
    if (m_rest.empty() || m_failed)
        return std::nullopt;
    Head head;
    if (readHead(m_rest, head) != HeadProblem::None || head.length > m_rest.size() - head.size) {
        m_failed = true;
        return std::nullopt;
    }
    const Tlv object { head.tag, m_rest.subspan(head.size, head.length), m_rest.first(head.size + head.length) };
    m_rest = m_rest.subspan(object.whole.size());
    return object;
}

std::optional<Tlv> findTlv(ByteView bytes, Tag tag)
{
    TlvReader reader(bytes);
    while (const auto object = reader.next()) {
        if (object->tag == tag)
            return object;
    }
    return std::nullopt;
}

std::optional<Tlv> findTlv(ByteView bytes, std::initializer_list<Tag> path)
{
    std::optional<Tlv> found;
    for (const Tag tag : path) {
        found = findTlv(bytes, tag);
        if (!found)
            return std::nullopt;
        bytes = found->value;
    }
    return found;
}

std::optional<std::vector<Tlv>> allTlvs(ByteView bytes)
{
    std::vector<Tlv> all;
    TlvReader reader(bytes);
    while (const auto object = reader.next())
        all.push_back(*object);
    if (reader.failed())
        return std::nullopt;
    return all;
}

std::optional<std::size_t> tlvSize(ByteView beginning)
{
    Head head;
    if (readHead(beginning, head) != HeadProblem::None)
        return std::nullopt;
    return head.size + head.length;
}

Bytes makeTlv(Tag tag, ByteView value)
{
    Bytes object = bigEndian(tag);
    if (value.size() < 0x80) {
        object.push_back(static_cast<std::uint8_t>(value.size()));
    } else {
        const Bytes length = bigEndian(value.size());
        object.push_back(static_cast<std::uint8_t>(0x80 | length.size()));
        object.insert(object.end(), length.begin(), length.end());
    }
    object.insert(object.end(), value.begin(), value.end());
    return object;
}

} // namespace kelvara::chip
