#include "Platform/Conference/local/LocalRoutes.h"

#include <QFile>
#include <QJsonDocument>
#include <QUrl>

namespace kelvara {

namespace {

constexpr QLatin1String resources(":/kelvara/conference/local/");
constexpr QLatin1String script("/external_api.js");
/// What is no room. The client's addresses of itself begin so, and no name of a room begins with a dot.
constexpr QLatin1String ownPlace("/.local/");

LocalRoutes::Reply refusal(int status)
{
    return { status, "text/plain; charset=utf-8", QByteArray::number(status) };
}

LocalRoutes::Reply json(const QJsonObject& object)
{
    return { 200, "application/json", QJsonDocument(object).toJson(QJsonDocument::Compact) };
}

LocalRoutes::Reply resource(const QString& name)
{
    QFile file(resources + name);
    if (name.contains(QLatin1String("..")) || !file.open(QIODevice::ReadOnly))
        return refusal(404);
    QByteArray type = "text/html; charset=utf-8";
    if (name.endsWith(QLatin1String(".js")))
        type = "text/javascript; charset=utf-8";
    else if (name.endsWith(QLatin1String(".css")))
        type = "text/css; charset=utf-8";
    return { 200, type, file.readAll() };
}

QString stateName(LocalCalls::State state)
{
    switch (state) {
    case LocalCalls::State::Open:
        return QStringLiteral("open");
    case LocalCalls::State::HungUp:
        return QStringLiteral("hungUp");
    case LocalCalls::State::Dropped:
        break;
    }
    return QStringLiteral("dropped");
}

} // namespace

std::optional<LocalRoutes::Reply> LocalRoutes::reply(bool isPost, const QString& path, const QByteArray& body)
{
    using Answers = LocalConference::Answers;
    const bool isScript = path == script;
    if (answers == Answers::Nothing || (answers == Answers::OnlyTheScript && !isScript))
        return std::nullopt;
    if (isScript)
        return hasEmbeddingScript ? resource(QStringLiteral("external_api.js")) : refusal(404);
    if (path.startsWith(ownPlace)) {
        const QString place = path.mid(ownPlace.size());
        if (!isPost)
            return resource(QLatin1String("client/") + place);
        const QJsonObject answer = spoken(place, QJsonDocument::fromJson(body).object());
        return answer.isEmpty() ? refusal(404) : json(answer);
    }
    // Browsers ask for an icon by themselves; nobody means a room by it, nor by no name at all.
    if (isPost || path == QLatin1String("/") || path == QLatin1String("/favicon.ico"))
        return refusal(404);
    return resource(QStringLiteral("client/client.html"));
}

QJsonObject LocalRoutes::spoken(const QString& word, const QJsonObject& said)
{
    if (word == QLatin1String("enter"))
        return enter(said);
    const QString call = said[QLatin1String("call")].toString();
    const LocalCalls::Media media { said[QLatin1String("video")].toBool(), said[QLatin1String("audio")].toBool() };
    LocalCalls::State state = LocalCalls::State::HungUp;
    if (word == QLatin1String("join"))
        state = m_calls.join(call, media);
    else if (word == QLatin1String("contact"))
        state = m_calls.contact(call, media);
    else if (word == QLatin1String("leave"))
        m_calls.leave(call);
    else
        return {};
    return { { QStringLiteral("state"), stateName(state) } };
}

QJsonObject LocalRoutes::enter(const QJsonObject& said)
{
    LocalConference::Visit visit;
    visit.room = QUrl::fromPercentEncoding(said[QLatin1String("path")].toString().mid(1).toUtf8());
    visit.token = said[QLatin1String("token")].toString();
    visit.displayName = said[QLatin1String("displayName")].toString();
    visit.config = said[QLatin1String("config")].toObject();
    visit.interfaceConfig = said[QLatin1String("interfaceConfig")].toObject();
    const auto accepts = acceptsToken; // a copy: the function may set another
    if (accepts && !accepts(visit.token))
        return { { QStringLiteral("accepted"), false } };
    const QString room = visit.room;
    return { { QStringLiteral("accepted"), true }, { QStringLiteral("room"), room },
        { QStringLiteral("call"), m_calls.enter(std::move(visit)) } };
}

} // namespace kelvara
