#include "Platform/Chip/lds/COM.h"

#include "Platform/Chip/lds/LdsText.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

/// Pairs of digits ("0107") as numbers between dots ("1.7"); empty for anything else.
std::string versionOf(ByteView content, Tag tag, std::size_t digits)
{
    const auto object = findTlv(content, tag);
    if (!object || object->value.size() != digits)
        return {};
    std::string version;
    for (std::size_t i = 0; i < digits; i += 2) {
        const int high = object->value[i] - '0';
        const int low = object->value[i + 1] - '0';
        if (high < 0 || high > 9 || low < 0 || low > 9)
            return {};
        version += (version.empty() ? "" : ".") + std::to_string(high * 10 + low);
    }
    return version;
}

} // namespace

std::optional<COM> COM::parse(ByteView file)
{
    const auto content = ldsContent(file, 0x60);
    if (!content)
        return std::nullopt;
    const auto tags = findTlv(*content, 0x5C);
    if (!tags)
        return std::nullopt;
    return COM { versionOf(*content, 0x5F01, 4), versionOf(*content, 0x5F36, 6), dataGroupsOfTags(tags->value),
        bytes(file) };
}

} // namespace kelvara::chip
