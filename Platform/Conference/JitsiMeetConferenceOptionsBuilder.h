#pragma once

#include "Platform/Conference/JitsiMeetConferenceOptions.h"
#include "Platform/Foundation/Export.h"

namespace kelvara {

/// Collects the options of a conference; see `JitsiMeetConferenceOptions::fromBuilder`. One thread at a time.
class KELVARA_EXPORT JitsiMeetConferenceOptionsBuilder
{
public:
    /// Absent, empty or invalid: no server.
    void setServerURL(const std::optional<QUrl>& url);
    /// Unchanged, whatever its letters; the page encodes it for the address.
    void setRoom(const QString& room) { m_options.m_room = room; }
    /// The server's access token (a JSON web token). Empty: none.
    void setToken(const QString& token) { m_options.m_token = token; }
    void setAudioOnly(bool audioOnly) { note("audioOnly", audioOnly); }
    void setAudioMuted(bool muted) { note("audioMuted", muted); }
    void setVideoMuted(bool muted) { note("videoMuted", muted); }
    void setWelcomePageEnabled(bool enabled) { note("welcomePageEnabled", enabled); }
    /// Any name is carried; those that the web client has something for are listed in Docs/conference.md. Of several
    /// calls for one flag the last counts.
    void setFeatureFlag(const QString& flag, bool withBoolean);

    [[nodiscard]] JitsiMeetConferenceOptions build() const { return m_options; }

private:
    void note(const char* option, bool value);

    JitsiMeetConferenceOptions m_options;
};

} // namespace kelvara
