#pragma once

#include "Platform/Foundation/Export.h"

#include <QString>

namespace kelvara {

/// Why a conference could not be joined or ended before its time. Causes and remedies: Docs/conference.md.
enum class ConferenceErrorKind {
    NoServer, ///< The options name no server.
    InvalidServer, ///< The server's address is none of a web server, or carries a user's name or password.
    InsecureServer, ///< Neither https nor this machine itself.
    NoRoom,
    ServerUnreachable,
    ServerUntrusted, ///< Its certificate is not accepted; that is never overruled.
    NoConferenceServer, ///< There is a server, but no embedding script on it.
    NoAnswer, ///< The server or its client took too long.
    TokenRefused,
    ConnectionLost,
    ClientFailed, ///< Any other error that the client calls fatal.
    PageCrashed,
    Unavailable, ///< The library was built without the web engine, or it cannot run here.
};

/// A value; any thread.
struct KELVARA_EXPORT ConferenceError
{
    ConferenceErrorKind kind;
    QString origin = {}; ///< Words of the client or the browser about it; never part of the token.

    /// The kind's name as hosts get it, such as "tokenRefused".
    [[nodiscard]] QString name() const;
    /// What the person is told, in Turkish.
    [[nodiscard]] QString message() const;
};

} // namespace kelvara
