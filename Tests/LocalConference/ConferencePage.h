#pragma once

#include "Platform/Conference/local/LocalConference.h"
#include "Tests/Support/BrowserLoop.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <QWebEnginePage>
#include <QWebEngineProfile>

#include <functional>
#include <optional>

namespace kelvara::test {

inline const QString joinedEvent = QStringLiteral("videoConferenceJoined");
inline const QString errorEvent = QStringLiteral("errorOccurred");

/// `runUntil` with more patience, and at once where the condition holds already.
inline bool waitUntil(const std::function<bool()>& condition, int limit = 60000)
{
    return condition() || runUntil(condition, limit);
}

/// Time for what must not come.
inline void waitOut(int milliseconds)
{
    waitUntil([] { return false; }, milliseconds);
}

/// A host's page that embeds the conference by its script and writes down what it is told.
class ConferencePage final : public QWebEnginePage
{
public:
    enum class Permission { Granted, Refused };

    explicit ConferencePage(QWebEngineProfile& profile, Permission permission = Permission::Granted)
        : QWebEnginePage(&profile)
    {
        setVisible(true); // timers of hidden pages beat once a second
        connect(
            this, &QWebEnginePage::featurePermissionRequested, this, [=, this](const QUrl& origin, Feature feature) {
                setFeaturePermission(origin, feature,
                    permission == Permission::Granted ? PermissionGrantedByUser : PermissionDeniedByUser);
            });
    }

    /// Embeds the room from the server's own origin. Options beyond these override them.
    void embed(const QUrl& server, const QString& room, const QJsonObject& options = {})
    {
        QJsonObject all { { QStringLiteral("roomName"), room }, { QStringLiteral("noSSL"), true } };
        for (auto option = options.begin(); option != options.end(); ++option)
            all.insert(option.key(), option.value());
        const QByteArray json = QJsonDocument(all).toJson(QJsonDocument::Compact).toBase64();
        setHtml(QStringLiteral(R"(<body><script src="/external_api.js"></script><script>
            const bytes = Uint8Array.from(atob('%1'), letter => letter.charCodeAt(0));
            const options = JSON.parse(new TextDecoder().decode(bytes));
            if (options.tokenLength)
                options.jwt = 'x'.repeat(options.tokenLength);
            if (typeof JitsiMeetExternalAPI === 'undefined') {
                console.log('event:absent {}');
            } else {
                window.api = new JitsiMeetExternalAPI(location.host, { parentNode: document.body, ...options });
                for (const name of ['videoConferenceJoined', 'participantJoined', 'audioMuteStatusChanged',
                        'videoMuteStatusChanged', 'videoConferenceLeft', 'readyToClose', 'errorOccurred'])
                    api.on(name, data => console.log(`event:${name} ${JSON.stringify(data)}`));
            }
            </script>)")
                    .arg(QString::fromLatin1(json)),
            server);
    }

    [[nodiscard]] bool waitFor(const QString& event, int limit = 60000)
    {
        return waitUntil([&] { return events.contains(event); }, limit);
    }
    /// What came with the last event of the name.
    [[nodiscard]] QJsonObject dataOf(const QString& event) const
    {
        const auto at = events.lastIndexOf(event);
        return at < 0 ? QJsonObject() : data[at];
    }
    /// The name of the error that came; empty without.
    [[nodiscard]] QString errorName() const
    {
        return dataOf(QStringLiteral("errorOccurred"))[QLatin1String("error")][QLatin1String("name")].toString();
    }
    /// What the expression is, seen from the embedding page. `client` is the room's document.
    QVariant evaluate(const QString& expression)
    {
        std::optional<QVariant> value;
        runJavaScript(QStringLiteral("(() => { const client = window.api && api.getIFrame() "
                                     "&& api.getIFrame().contentDocument; return %1; })()")
                          .arg(expression),
            [&](const QVariant& found) { value = found; });
        if (!waitUntil([&] { return value.has_value(); }, 30000))
            return {};
        return *value;
    }

    QStringList events;
    QList<QJsonObject> data;
    QStringList otherMessages; ///< What the console showed beside.

protected:
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel, const QString& message, int, const QString& source) override
    {
        const QString mark = QStringLiteral("event:");
        if (!message.startsWith(mark)) {
            otherMessages << message + QLatin1Char(' ') + source;
            return;
        }
        const qsizetype space = message.indexOf(QLatin1Char(' '));
        events << message.mid(mark.size(), space - mark.size());
        data << QJsonDocument::fromJson(message.mid(space + 1).toUtf8()).object();
    }
};

/// A server that listens, with a profile that leaves nothing on disk.
struct ConferenceStage
{
    LocalConference server;
    QWebEngineProfile profile;
    QStringList heard; ///< The server's signals.

    ConferenceStage()
    {
        QObject::connect(&server, &LocalConference::joined, &server,
            [this](const QString& room) { heard << QStringLiteral("joined ") + room; });
        QObject::connect(&server, &LocalConference::left, &server,
            [this](const QString& room) { heard << QStringLiteral("left ") + room; });
        if (!server.listen())
            qFatal("no free port");
    }
};

} // namespace kelvara::test
