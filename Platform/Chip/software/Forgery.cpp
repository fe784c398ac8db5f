#include "Platform/Chip/software/Forgery.h"

#include <algorithm>
#include <array>

namespace kelvara::chip::software {

namespace {

constexpr std::array<std::string_view, 14> kNames { "changedDG1", "changedDG2", "swappedSecurityObject",
    "foreignSigner", "activeAuthenticationClone", "chipAuthenticationClone", "refusesChipAuthentication",
    "refusesActiveAuthentication", "paceHidden", "paceStripped", "quietCom", "missingDG15", "undecodablePortrait",
    "foreignDG1" };

} // namespace

std::string_view nameOf(Forgery forgery)
{
    return kNames[static_cast<std::size_t>(forgery)];
}

std::optional<Forgery> forgeryOfName(std::string_view name)
{
    const auto* found = std::find(kNames.begin(), kNames.end(), name);
    return found == kNames.end() ? std::nullopt : std::optional(static_cast<Forgery>(found - kNames.begin()));
}

} // namespace kelvara::chip::software
