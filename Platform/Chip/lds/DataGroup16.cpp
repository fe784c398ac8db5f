#include "Platform/Chip/lds/DataGroup16.h"

namespace kelvara::chip {

std::optional<DataGroup16> DataGroup16::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x70);
    if (!content)
        return std::nullopt;
    DataGroup16 group;
    TlvReader reader(*content);
    while (const auto one = reader.next()) {
        if (one->tag < 0xA1 || one->tag > 0xAF)
            continue;
        PersonToNotify person;
        if (const auto date = findTlv(one->value, 0x5F50))
            person.recordedOn = ldsDigits(date->value, 8);
        person.name = HolderName::parse(ldsTextOf(one->value, 0x5F51));
        person.telephone = ldsTextOf(one->value, 0x5F52);
        person.address = ldsParts(ldsTextOf(one->value, 0x5F53));
        if (!person.name.primary.isEmpty())
            group.persons.push_back(std::move(person));
    }
    if (group.persons.empty())
        return std::nullopt;
    group.raw = bytes(file);
    return group;
}

} // namespace kelvara::chip
