#include "Platform/Chip/lds/DataGroup11.h"

namespace kelvara::chip {

std::optional<DataGroup11> DataGroup11::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x6B);
    if (!content || !allTlvs(*content))
        return std::nullopt;
    const auto text = [&](Tag tag) { return ldsTextOf(*content, tag); };
    DataGroup11 group;
    if (const QString name = text(0x5F0E); !name.isEmpty())
        group.fullName = HolderName::parse(name);
    for (const ByteView name : ldsRepeated(*content, 0x5F0F))
        group.otherNames.push_back(HolderName::parse(ldsText(name)));
    group.personalNumber = text(0x5F10);
    if (const auto birth = findTlv(*content, 0x5F2B))
        group.birthDate = ldsDigits(birth->value, 8);
    group.placeOfBirth = ldsParts(text(0x5F11));
    group.address = ldsParts(text(0x5F42));
    group.telephone = text(0x5F12);
    group.profession = text(0x5F13).replace(u'<', u' ');
    group.title = text(0x5F14).replace(u'<', u' ');
    group.personalSummary = text(0x5F15).replace(u'<', u' ');
    if (const auto proof = findTlv(*content, 0x5F16))
        group.proofOfCitizenship = EncodedImage::of(proof->value);
    group.otherTravelDocuments = ldsParts(text(0x5F17));
    group.custody = text(0x5F18).replace(u'<', u' ');
    group.raw = bytes(file);
    return group;
}

} // namespace kelvara::chip
