#include "Platform/Chip/software/ChipFiles.h"

#include "Platform/Chip/Tlv.h"

#include <algorithm>
#include <array>

namespace kelvara::chip::software {

namespace {

constexpr std::array<std::uint8_t, 7> kApplication { 0xA0, 0x00, 0x00, 0x02, 0x47, 0x10, 0x01 };
constexpr std::uint16_t kMasterFile = 0x3F00;

ResponseApdu status(std::uint16_t sw)
{
    return { {}, sw };
}

std::uint16_t number16(ByteView bytes)
{
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

} // namespace

void ChipFiles::add(std::uint16_t fileId, Bytes content, bool inApplication)
{
    m_files[{ inApplication, fileId }] = std::move(content);
}

std::optional<std::uint16_t> ChipFiles::fileMeantBy(const CommandApdu& command) const
{
    if (command.ins == 0xB0 && (command.p1 & 0x80)) {
        const std::uint8_t shortId = command.p1 & 0x1F;
        for (const auto& [place, content] : m_files) {
            if (place.first == m_applicationSelected && (place.second & 0x1F) == shortId)
                return place.second;
        }
        return std::nullopt;
    }
    return m_selected;
}

std::optional<ResponseApdu> ChipFiles::answer(const CommandApdu& command, std::uint32_t room)
{
    switch (command.ins) {
    case 0xA4:
        return select(command);
    case 0xB0:
    case 0xB1:
        return read(command, room);
    default:
        return std::nullopt;
    }
}

void ChipFiles::reset()
{
    m_applicationSelected = false;
    m_selected.reset();
}

ResponseApdu ChipFiles::select(const CommandApdu& command)
{
    if (command.p1 == 0x04) {
        if (!std::ranges::equal(command.data, kApplication))
            return status(0x6A82);
        m_applicationSelected = true;
        m_selected.reset();
        return status(0x9000);
    }
    const bool byFileId = (command.p1 == 0x02 || command.p1 == 0x00) && command.data.size() == 2;
    if (command.p1 == 0x00 && (command.data.empty() || (byFileId && number16(command.data) == kMasterFile))) {
        reset();
        return status(0x9000);
    }
    if (!byFileId)
        return status(0x6A86);
    const std::uint16_t fileId = number16(command.data);
    if (!m_files.contains({ m_applicationSelected, fileId }))
        return status(0x6A82);
    m_selected = fileId;
    return status(0x9000);
}

ResponseApdu ChipFiles::read(const CommandApdu& command, std::uint32_t room)
{
    const std::uint32_t wanted = command.le.value_or(0);
    if (command.ins == 0xB1) {
        if (!m_manners.knowsOddInstruction)
            return status(0x6D00);
        const auto offsetObject = findTlv(command.data, 0x54);
        const bool current = command.p1 == 0 && command.p2 == 0;
        if (!offsetObject || offsetObject->value.empty() || offsetObject->value.size() > 3 || !current || !m_selected)
            return status(0x6A86);
        std::size_t offset = 0;
        for (const std::uint8_t byte : offsetObject->value)
            offset = offset << 8 | byte;
        return part(*m_selected, offset, wanted, room, true);
    }
    if (!command.le)
        return status(0x6700);
    if (command.p1 & 0x80) {
        if (!m_manners.knowsShortFileIds)
            return status(0x6A86);
        const auto fileId = fileMeantBy(command);
        if (!fileId)
            return status(0x6A82);
        m_selected = fileId;
        return part(*fileId, command.p2, wanted, room, false);
    }
    if (!m_selected)
        return status(0x6986);
    return part(*m_selected, static_cast<std::size_t>(command.p1 << 8 | command.p2), wanted, room, false);
}

ResponseApdu ChipFiles::part(
    std::uint16_t fileId, std::size_t offset, std::uint32_t wanted, std::uint32_t room, bool wrapped) const
{
    const Bytes& content = m_files.at({ m_applicationSelected, fileId });
    const std::uint32_t longest = std::min(m_manners.longestAnswer, room);
    if (offset > content.size())
        return status(0x6B00);
    if (wanted > longest) {
        if (m_manners.tooLongAnswer == 0x6C00)
            return status(static_cast<std::uint16_t>(0x6C00 | (longest & 0xFF)));
        if (m_manners.tooLongAnswer != 0x9000)
            return status(m_manners.tooLongAnswer);
        wanted = longest;
    }
    // The odd instruction's answer lies in a data object, whose head counts towards what was asked for.
    const std::uint32_t head = !wrapped ? 0 : wanted > 0x102 ? 4 : wanted > 0x81 ? 3 : 2;
    const std::size_t asked = wanted > head ? wanted - head : 0;
    const std::size_t rest = content.size() - offset;
    const bool overEnd = asked > rest;
    if (overEnd && m_manners.endOfFileAnswer == 0x6B00)
        return status(0x6B00);
    const ByteView found = ByteView(content).subspan(offset, std::min(asked, rest));
    return { wrapped ? makeTlv(0x53, found) : bytes(found),
        overEnd ? m_manners.endOfFileAnswer : std::uint16_t { 0x9000 } };
}

} // namespace kelvara::chip::software
