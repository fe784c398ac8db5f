#pragma once

#include "Platform/Foundation/Export.h"

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

namespace kelvara {

/// A video conference server in this process, for hosts' tests and for demonstrations: give its `url()` to the view in
/// place of the real server's address. It serves an embedding script (`/external_api.js`, class `JitsiMeetExternalAPI`)
/// and a client page that opens camera and microphone and holds a real WebRTC call, inside the page, with a drawn bank
/// representative. Any other path is a room. It listens on the loopback interface only.
///
/// A call is joined when the representative's picture plays (in audio-only calls: when the sound is connected). Pages
/// keep contact with the server several times a second, so what is done here shows there at once; an event loop must
/// run on the main thread. A page that was not heard of for some five seconds has left.
///
/// Main thread only. Signals come queued: anything may be done in them, deleting the conference included.
class KELVARA_EXPORT LocalConference final : public QObject
{
    Q_OBJECT
public:
    /// A person who joined a room. A value; `visits()` has the present state of things.
    struct Visit
    {
        QString room; ///< As the host gave it, percent-decoded; a tenant stands before a slash.
        QString token; ///< The JWT of the address; empty without. Personal data: never to be logged.
        QString displayName; ///< The person's name as the host gave it; empty without.
        QJsonObject config; ///< `configOverwrite`: a member for each option of the address, values as given.
        QJsonObject interfaceConfig; ///< `interfaceConfigOverwrite`, likewise.
        bool hasVideo = false; ///< The page sends the person's picture: there is a camera, allowed and not muted.
        bool hasAudio = false; ///< The page sends the person's voice, likewise.
        bool isOpen = false; ///< The person is still there.
    };

    /// What of the requests is answered; the others are taken and then wait for ever.
    enum class Answers {
        Everything, ///< As a server in good health.
        OnlyTheScript, ///< The embedding script loads; rooms stay white and open calls lose contact.
        Nothing, ///< The embedding script does not come either.
    };

    explicit LocalConference(QObject* parent = nullptr);
    /// As `close()`, without signals.
    ~LocalConference() override;

    /// Begins to serve at the port, 0 for one that is free; closes first when it was serving. False when the port is
    /// taken.
    bool listen(quint16 port = 0);
    /// `http://localhost:PORT`; empty when not listening. Localhost counts as secure, so pages get cameras without TLS.
    [[nodiscard]] QUrl url() const;
    /// The server dies: connections break, whether answered or not, and open calls notice within a second
    /// (`errorOccurred`, "connection.droppedError"). `visits()` stays.
    void close();

    /// Who may join; the token is empty for a room without. Null, as at first: everyone. Others get `errorOccurred`
    /// with "connection.passwordRequired" and leave no visit. Asked in the middle of a request: the function must not
    /// close or delete the conference.
    void setAcceptsToken(std::function<bool(const QString& token)> accepts);

    /// The representative ends the call, in every room: `videoConferenceLeft`, then `readyToClose`.
    void hangUp();
    /// The call is lost, in every room, as by a broken line: `errorOccurred` with "connection.droppedError", fatal.
    void dropCall();

    // Trouble on demand.
    /// False: `/external_api.js` is not found (404). Counts for pages that are loaded from now on.
    void setHasEmbeddingScript(bool has);
    /// Counts for requests from now on, also of open calls. What was left waiting is never answered.
    void setAnswers(Answers answers);

    /// Everyone who joined, in that order, those who left again too.
    [[nodiscard]] QList<Visit> visits() const;

Q_SIGNALS:
    /// Somebody joined: the last of `visits()` when they came.
    void joined(const QString& room);
    /// Somebody who had joined left, hung up, was lost or was not heard of any more.
    void left(const QString& room);

private:
    class Server;
    std::unique_ptr<Server> d;
};

} // namespace kelvara
