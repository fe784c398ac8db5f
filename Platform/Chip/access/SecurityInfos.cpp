#include "Platform/Chip/access/SecurityInfos.h"

#include "Platform/Chip/Tlv.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

constexpr Tag integerTag = 0x02, octetStringTag = 0x04, oidTag = 0x06, sequenceTag = 0x30, setTag = 0x31;
constexpr Tag dataGroup14Tag = 0x6E, explicit0Tag = 0xA0;
constexpr std::size_t mostInfos = 64;
constexpr unsigned paceVersion = 2;
constexpr unsigned activeAuthenticationVersion = 1;

using Kind = KeyAgreementGroup::Kind;

/// One SecurityInfo: its identifier and the one or two fields after it.
struct Info
{
    ByteView identifier;
    Tlv required;
    std::optional<Tlv> optional;
};

std::optional<unsigned> smallInteger(const Tlv& object)
{
    if (object.tag != integerTag || object.value.empty() || object.value.size() > 2 || (object.value[0] & 0x80) != 0)
        return std::nullopt;
    unsigned number = 0;
    for (const std::uint8_t digit : object.value)
        number = number << 8 | digit;
    return number;
}

/// The arcs after a root; absent when the identifier does not begin with it.
std::optional<ByteView> arcsAfter(ByteView identifier, ByteView root)
{
    if (identifier.size() < root.size() || !std::equal(root.begin(), root.end(), identifier.begin()))
        return std::nullopt;
    return identifier.subspan(root.size());
}

std::optional<Kind> kindFromArc(std::uint8_t arc)
{
    if (arc == 1)
        return Kind::DH;
    return arc == 2 ? std::optional(Kind::ECDH) : std::nullopt;
}

/// Whether an optional number is either absent or readable into `number`.
bool readOptional(const std::optional<Tlv>& object, std::optional<unsigned>& number)
{
    if (!object)
        return true;
    number = smallInteger(*object);
    return number.has_value();
}

void addPace(SecurityInfos& infos, const Info& info, ByteView arcs)
{
    std::optional<unsigned> parameterId;
    if (!readOptional(info.optional, parameterId))
        return;
    if (arcs.size() == 2) {
        const auto protocol = PaceProtocol::fromIdentifier(info.identifier);
        if (protocol && smallInteger(info.required) == paceVersion)
            infos.pace.push_back({ *protocol, parameterId });
    } else if (arcs.size() == 1) {
        const auto mapping = paceMappingFromArc(arcs[0]);
        GroupPointer group = mapping ? groupFromAlgorithm(info.required.whole) : nullptr;
        if (group && group->kind() == mapping->agreement)
            infos.paceDomainParameters.push_back(
                { mapping->agreement, mapping->mapping, std::move(group), parameterId });
    }
}

Bytes keyIdOf(const Info& info)
{
    return info.optional && info.optional->tag == integerTag ? bytes(first(info.optional->value, 16)) : Bytes {};
}

void addChipAuthentication(SecurityInfos& infos, const Info& info, ByteView arcs)
{
    if (arcs.size() != 2)
        return;
    const auto kind = kindFromArc(arcs[0]);
    const auto cipher = cipherFromArc(arcs[1]);
    if (kind && cipher && smallInteger(info.required))
        infos.chipAuthentication.push_back({ *kind, *cipher, keyIdOf(info) });
}

void addChipAuthenticationKey(SecurityInfos& infos, const Info& info, ByteView arcs)
{
    const auto kind = arcs.size() == 1 ? kindFromArc(arcs[0]) : std::nullopt;
    auto key = kind ? publicKeyFromInfo(info.required.whole) : std::nullopt;
    if (key && key->group->kind() == *kind)
        infos.chipAuthenticationKeys.push_back({ std::move(*key), keyIdOf(info) });
}

void addActiveAuthentication(SecurityInfos& infos, const Info& info)
{
    // ecdsa-plain-signatures, then the digest
    const std::uint8_t plainSignatures[] = { 0x04, 0x00, 0x7F, 0x00, 0x07, 0x01, 0x01, 0x04, 0x01 };
    if (smallInteger(info.required) != activeAuthenticationVersion || !info.optional || info.optional->tag != oidTag)
        return;
    const auto arcs = arcsAfter(info.optional->value, plainSignatures);
    if (arcs && arcs->size() == 1 && (*arcs)[0] >= 1 && (*arcs)[0] <= 5)
        infos.activeAuthentication = ActiveAuthenticationInfo { static_cast<DigestAlgorithm>((*arcs)[0] - 1) };
}

void add(SecurityInfos& infos, const Info& info)
{
    const std::uint8_t activeAuthentication[] = { 0x67, 0x81, 0x08, 0x01, 0x01, 0x05 };
    if (const auto pace = arcsAfter(info.identifier, smartcardIdentifier({ 4 })))
        addPace(infos, info, *pace);
    else if (const auto protocol = arcsAfter(info.identifier, smartcardIdentifier({ 3 })))
        addChipAuthentication(infos, info, *protocol);
    else if (const auto key = arcsAfter(info.identifier, smartcardIdentifier({ 1 })))
        addChipAuthenticationKey(infos, info, *key);
    else if (const auto active = arcsAfter(info.identifier, activeAuthentication); active && active->empty())
        addActiveAuthentication(infos, info);
}

} // namespace

std::optional<SecurityInfos> SecurityInfos::parsed(ByteView file)
{
    TlvReader outer(file);
    auto set = outer.next();
    if (set && set->tag == dataGroup14Tag)
        set = TlvReader(set->value).next();
    if (!set || set->tag != setTag)
        return std::nullopt;
    const auto objects = allTlvs(set->value);
    if (!objects || objects->size() > mostInfos)
        return std::nullopt;
    SecurityInfos infos;
    for (const Tlv& object : *objects) {
        const auto fields = object.tag == sequenceTag ? allTlvs(object.value) : std::nullopt;
        if (!fields || fields->empty() || (*fields)[0].tag != oidTag)
            return std::nullopt;
        if (fields->size() == 2)
            add(infos, { (*fields)[0].value, (*fields)[1], std::nullopt });
        else if (fields->size() == 3)
            add(infos, { (*fields)[0].value, (*fields)[1], (*fields)[2] });
    }
    return infos;
}

std::optional<SecurityInfos> SecurityInfos::fromCardSecurity(ByteView file)
{
    // ContentInfo, SignedData, EncapsulatedContentInfo, its content
    const auto signedData = findTlv(file, { sequenceTag, explicit0Tag, sequenceTag });
    const auto content
        = signedData ? findTlv(signedData->value, { sequenceTag, explicit0Tag, octetStringTag }) : std::nullopt;
    return content ? parsed(content->value) : std::nullopt;
}

} // namespace kelvara::chip
