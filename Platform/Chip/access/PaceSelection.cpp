#include "Platform/Chip/access/PaceSelection.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace kelvara::chip {

namespace {

constexpr unsigned firstProprietary = 32; ///< Smaller identifiers are standardised or reserved.

GroupPointer groupOf(const PaceInfo& info, const SecurityInfos& infos)
{
    if (info.parameterId && *info.parameterId < firstProprietary)
        return standardizedGroup(*info.parameterId);
    for (const PaceDomainParameterInfo& parameters : infos.paceDomainParameters) {
        if (parameters.agreement == info.protocol.agreement && parameters.mapping == info.protocol.mapping
            && parameters.parameterId == info.parameterId)
            return parameters.group;
    }
    return nullptr;
}

/// Some curves have no integrated mapping.
bool canMap(const PaceProtocol& protocol, const GroupPointer& group)
{
    const std::uint8_t two[] = { 2 };
    return protocol.mapping != PaceMapping::Integrated || group->mapped(ByteView(two)).has_value();
}

auto rank(const PaceSelection& selection)
{
    const PaceProtocol& protocol = selection.protocol;
    return std::tuple(protocol.mapping == PaceMapping::ChipAuthentication,
        protocol.agreement == KeyAgreementGroup::Kind::ECDH, static_cast<int>(protocol.cipher),
        protocol.mapping == PaceMapping::Generic);
}

} // namespace

std::vector<PaceSelection> paceSelections(const SecurityInfos& infos)
{
    std::set<std::optional<unsigned>> announced;
    for (const PaceInfo& info : infos.pace)
        announced.insert(info.parameterId);
    for (const PaceDomainParameterInfo& parameters : infos.paceDomainParameters)
        announced.insert(parameters.parameterId);
    std::vector<PaceSelection> selections;
    for (const PaceInfo& info : infos.pace) {
        GroupPointer group = groupOf(info, infos);
        if (group && group->kind() == info.protocol.agreement && canMap(info.protocol, group))
            selections.push_back({ info.protocol, std::move(group), info.parameterId, announced.size() > 1 });
    }
    std::stable_sort(selections.begin(), selections.end(),
        [](const PaceSelection& one, const PaceSelection& other) { return rank(one) > rank(other); });
    return selections;
}

std::optional<PaceSelection> choosePace(const SecurityInfos& infos)
{
    auto selections = paceSelections(infos);
    return selections.empty() ? std::nullopt : std::optional(std::move(selections.front()));
}

} // namespace kelvara::chip
