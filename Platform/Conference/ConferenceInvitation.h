#pragma once

#include "Platform/Conference/ConferenceError.h"
#include "Platform/Conference/JitsiMeetConferenceOptions.h"
#include "Platform/Foundation/Export.h"

#include <QJsonObject>
#include <QUrl>

#include <variant>

namespace kelvara {

/// What a conference's page needs to join: the options, found to be such that a server can be asked. A value.
class KELVARA_EXPORT ConferenceInvitation
{
public:
    /// The invitation, or why nobody can be asked: a server must be given, by an https address (http only on this very
    /// machine) without a user's name or password, and a room.
    [[nodiscard]] static std::variant<ConferenceInvitation, ConferenceError> from(
        const JitsiMeetConferenceOptions& options);

    /// Scheme, host and port of the server, with path "/": what the camera and the microphone are granted to.
    [[nodiscard]] QUrl origin() const;
    /// Whether an address lies on the server.
    [[nodiscard]] bool isOnServer(const QUrl& url) const;
    /// The room's address, without the token.
    [[nodiscard]] QUrl roomURL() const;
    /// Whether the person is to be seen from the start.
    [[nodiscard]] bool startsWithVideo() const;

    /// For the page: "origin", "domain", "secure", "room", "token", "url" and "settings", a list of
    /// [name, value, whether a feature flag] in the order of the calls. Holds the token.
    [[nodiscard]] QJsonObject toJson() const;

private:
    explicit ConferenceInvitation(JitsiMeetConferenceOptions options) : m_options(std::move(options)) { }
    [[nodiscard]] const QUrl& server() const { return *m_options.serverURL(); }

    JitsiMeetConferenceOptions m_options;
};

} // namespace kelvara
