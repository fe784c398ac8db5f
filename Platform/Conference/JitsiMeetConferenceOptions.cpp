#include "Platform/Conference/JitsiMeetConferenceOptions.h"

#include "Platform/Conference/JitsiMeetConferenceOptionsBuilder.h"

#include <algorithm>

namespace kelvara {

JitsiMeetConferenceOptions JitsiMeetConferenceOptions::fromBuilder(
    const std::function<void(JitsiMeetConferenceOptionsBuilder&)>& build)
{
    JitsiMeetConferenceOptionsBuilder builder;
    if (build)
        build(builder);
    return builder.build();
}

std::optional<bool> JitsiMeetConferenceOptions::featureFlag(const QString& name) const
{
    return last(name, true);
}

std::optional<bool> JitsiMeetConferenceOptions::option(const QString& name) const
{
    return last(name, false);
}

std::optional<bool> JitsiMeetConferenceOptions::last(const QString& name, bool isFeatureFlag) const
{
    const auto found = std::find_if(m_settings.rbegin(), m_settings.rend(),
        [&](const Setting& setting) { return setting.isFeatureFlag == isFeatureFlag && setting.name == name; });
    return found == m_settings.rend() ? std::nullopt : std::optional(found->value);
}

} // namespace kelvara
