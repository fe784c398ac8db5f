#include "Platform/Chip/lds/DataGroup12.h"

namespace kelvara::chip {

std::optional<DataGroup12> DataGroup12::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x6C);
    if (!content || !allTlvs(*content))
        return std::nullopt;
    const auto digits = [&](Tag tag, std::size_t count) -> std::optional<QString> {
        const auto object = findTlv(*content, tag);
        return object ? ldsDigits(object->value, count) : std::nullopt;
    };
    const auto image = [&](Tag tag) -> std::optional<EncodedImage> {
        const auto object = findTlv(*content, tag);
        return object && !object->value.empty() ? std::optional(EncodedImage::of(object->value)) : std::nullopt;
    };
    DataGroup12 group;
    group.issuingAuthority = ldsTextOf(*content, 0x5F19).replace(u'<', u' ');
    group.issueDate = digits(0x5F26, 8);
    for (const ByteView name : ldsRepeated(*content, 0x5F1A))
        group.otherPersons.push_back(HolderName::parse(ldsText(name)));
    group.endorsements = ldsTextOf(*content, 0x5F1B).replace(u'<', u' ');
    group.taxOrExit = ldsTextOf(*content, 0x5F1C).replace(u'<', u' ');
    group.front = image(0x5F1D);
    group.rear = image(0x5F1E);
    group.personalizationTime = digits(0x5F55, 14);
    group.personalizationSerial = ldsTextOf(*content, 0x5F56);
    group.raw = bytes(file);
    return group;
}

} // namespace kelvara::chip
