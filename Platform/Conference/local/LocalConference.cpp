#include "Platform/Conference/local/LocalConference.h"

#include "Platform/Conference/local/LocalCalls.h"
#include "Platform/Conference/local/LocalRoutes.h"

#include <QHostAddress>
#include <QHttpServer>
#include <QTcpServer>
#include <QTimer>

using namespace std::chrono_literals;

// Its macro must stand outside any namespace. Resources of a static library are there only when asked for.
static void initLocalConferenceResources()
{
    Q_INIT_RESOURCE(local_conference);
}

namespace kelvara {

namespace {

constexpr auto beatLength = 1s;
constexpr int beatsOfPatience = 5;

} // namespace

class LocalConference::Server
{
public:
    explicit Server(LocalConference& q)
        : calls([&q](const QString& room) { later(q, &LocalConference::joined, room); },
            [&q](const QString& room) { later(q, &LocalConference::left, room); }),
          routes(calls)
    {
        QObject::connect(&beats, &QTimer::timeout, &q, [this] { calls.beat(beatsOfPatience); });
        beats.setInterval(beatLength);
    }

    bool listen(quint16 port)
    {
        auto sockets = std::make_unique<QTcpServer>();
        if (!sockets->listen(QHostAddress::LocalHost, port))
            return false;
        m_port = sockets->serverPort();
        m_http = std::make_unique<QHttpServer>();
        m_http->bind(sockets.release()); // owns it from now on
        m_http->setMissingHandler([this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
            answer(request, std::move(responder));
        });
        beats.start();
        return true;
    }

    /// The sockets are children of what listens, so that none outlives it.
    void close()
    {
        beats.stop();
        m_http.reset();
        m_port = 0;
    }

    [[nodiscard]] quint16 port() const { return m_port; }

    LocalCalls calls;
    LocalRoutes routes;
    QTimer beats;

private:
    static void later(LocalConference& q, void (LocalConference::*signal)(const QString&), const QString& room)
    {
        QMetaObject::invokeMethod(
            &q, [&q, signal, room] { Q_EMIT(q.*signal)
                                     (room); }, Qt::QueuedConnection);
    }

    void answer(const QHttpServerRequest& request, QHttpServerResponder&& responder)
    {
        const bool isPost = request.method() == QHttpServerRequest::Method::Post;
        const auto reply = routes.reply(isPost, request.url().path(QUrl::FullyDecoded), request.body());
        if (!reply)
            return;
        // A page that is embedded anew must meet the server as it is now; and the address of a room, which the token
        // stands in, goes nowhere else.
        responder.write(reply->body,
            { { "Content-Type", reply->type }, { "Cache-Control", "no-store" }, { "Referrer-Policy", "no-referrer" },
                { "X-Content-Type-Options", "nosniff" } },
            QHttpServerResponder::StatusCode(reply->status));
    }

    std::unique_ptr<QHttpServer> m_http;
    quint16 m_port = 0;
};

LocalConference::LocalConference(QObject* parent) : QObject(parent), d(std::make_unique<Server>(*this))
{
    initLocalConferenceResources();
}

LocalConference::~LocalConference()
{
    d->close();
}

bool LocalConference::listen(quint16 port)
{
    close();
    return d->listen(port);
}

QUrl LocalConference::url() const
{
    if (d->port() == 0)
        return {};
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(QStringLiteral("localhost"));
    url.setPort(d->port());
    return url;
}

void LocalConference::close()
{
    d->close();
    d->calls.endAll(LocalCalls::State::Dropped);
}

void LocalConference::setAcceptsToken(std::function<bool(const QString& token)> accepts)
{
    d->routes.acceptsToken = std::move(accepts);
}

void LocalConference::hangUp()
{
    d->calls.endAll(LocalCalls::State::HungUp);
}

void LocalConference::dropCall()
{
    d->calls.endAll(LocalCalls::State::Dropped);
}

void LocalConference::setHasEmbeddingScript(bool has)
{
    d->routes.hasEmbeddingScript = has;
}

void LocalConference::setAnswers(Answers answers)
{
    d->routes.answers = answers;
}

QList<LocalConference::Visit> LocalConference::visits() const
{
    return d->calls.visits();
}

} // namespace kelvara
