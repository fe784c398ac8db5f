#include "Platform/Conference/ConferenceInvitation.h"

#include <QJsonArray>

namespace kelvara {

namespace {

constexpr QLatin1String kSecure("https");
constexpr QLatin1String kPlain("http");

bool isThisMachine(const QString& host)
{
    return host == QLatin1String("localhost") || host == QLatin1String("127.0.0.1") || host == QLatin1String("::1");
}

int portOf(const QUrl& url)
{
    return url.port(url.scheme() == kSecure ? 443 : 80);
}

} // namespace

std::variant<ConferenceInvitation, ConferenceError> ConferenceInvitation::from(
    const JitsiMeetConferenceOptions& options)
{
    const auto error = [](ConferenceErrorKind kind) -> std::variant<ConferenceInvitation, ConferenceError> {
        return ConferenceError { kind };
    };
    const auto& server = options.serverURL();
    if (!server)
        return error(ConferenceErrorKind::NoServer);
    const bool isOfTheWeb = server->scheme() == kSecure || server->scheme() == kPlain;
    if (!isOfTheWeb || server->host().isEmpty() || !server->userInfo().isEmpty())
        return error(ConferenceErrorKind::InvalidServer);
    // Without encryption no browser gives a page the camera, but for this machine's own.
    if (server->scheme() != kSecure && !isThisMachine(server->host()))
        return error(ConferenceErrorKind::InsecureServer);
    if (options.room().value_or(QString()).trimmed().isEmpty())
        return error(ConferenceErrorKind::NoRoom);
    return ConferenceInvitation(options);
}

QUrl ConferenceInvitation::origin() const
{
    QUrl url;
    url.setScheme(server().scheme());
    url.setHost(server().host());
    url.setPort(server().port());
    url.setPath(QStringLiteral("/"));
    return url;
}

bool ConferenceInvitation::isOnServer(const QUrl& url) const
{
    return url.scheme() == server().scheme() && url.host() == server().host() && portOf(url) == portOf(server());
}

QUrl ConferenceInvitation::roomURL() const
{
    QUrl url = origin();
    QString path = server().path(QUrl::FullyDecoded);
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    url.setPath(path + QLatin1Char('/') + *m_options.room(), QUrl::DecodedMode);
    return url;
}

bool ConferenceInvitation::startsWithVideo() const
{
    return !m_options.audioOnly().value_or(false) && !m_options.videoMuted().value_or(false);
}

QJsonObject ConferenceInvitation::toJson() const
{
    QJsonArray settings;
    for (const auto& setting : m_options.settings())
        settings.append(QJsonArray { setting.name, setting.value, setting.isFeatureFlag });
    QString path = server().path(QUrl::FullyEncoded);
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return { { QStringLiteral("origin"), origin().toString(QUrl::FullyEncoded | QUrl::RemovePath) },
        { QStringLiteral("domain"), server().authority(QUrl::FullyEncoded) + path },
        { QStringLiteral("secure"), server().scheme() == kSecure }, { QStringLiteral("room"), *m_options.room() },
        { QStringLiteral("token"), m_options.token().value_or(QString()) },
        { QStringLiteral("url"), roomURL().toString(QUrl::FullyEncoded) }, { QStringLiteral("settings"), settings } };
}

} // namespace kelvara
