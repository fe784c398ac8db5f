#include "Platform/Conference/JitsiMeetConferenceOptionsBuilder.h"

namespace kelvara {

void JitsiMeetConferenceOptionsBuilder::setServerURL(const std::optional<QUrl>& url)
{
    m_options.m_serverURL = url && url->isValid() && !url->isEmpty() ? url : std::nullopt;
}

void JitsiMeetConferenceOptionsBuilder::setFeatureFlag(const QString& flag, bool withBoolean)
{
    m_options.m_settings.append({ flag, withBoolean, true });
}

void JitsiMeetConferenceOptionsBuilder::note(const char* option, bool value)
{
    m_options.m_settings.append({ QString::fromLatin1(option), value, false });
}

} // namespace kelvara
