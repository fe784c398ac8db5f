#pragma once

#include <QHash>
#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerResponder>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>

#include <memory>

namespace kelvara::test {

/// A web server on this machine that answers what a test tells it to, as a conference server that means no good. What
/// its pages post to "/told", a JSON object, is kept.
class HostileServer
{
public:
    struct Answer
    {
        QByteArray body {};
        QByteArray type = "text/javascript";
        int status = 200;
        std::pair<QByteArray, QByteArray> header {}; ///< One more.
    };

    HostileServer()
    {
        auto sockets = std::make_unique<QTcpServer>();
        sockets->listen(QHostAddress::LocalHost);
        m_port = sockets->serverPort();
        m_http.bind(sockets.release());
        m_http.setMissingHandler([this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
            const QString path = request.url().path();
            if (path == QLatin1String("/told"))
                told = QJsonDocument::fromJson(request.body()).object();
            const Answer answer = answers.value(path, Answer { .status = 404 });
            responder.writeStatusLine(QHttpServerResponder::StatusCode(answer.status));
            responder.writeHeader("Content-Type", answer.type);
            responder.writeHeader("Content-Length", QByteArray::number(answer.body.size()));
            if (!answer.header.first.isEmpty())
                responder.writeHeader(answer.header.first, answer.header.second);
            responder.writeBody(answer.body);
        });
    }

    [[nodiscard]] QString url(const char* host = "localhost") const
    {
        return QStringLiteral("http://%1:%2").arg(QString::fromLatin1(host)).arg(m_port);
    }

    void setScript(const Answer& answer) { answers[QStringLiteral("/external_api.js")] = answer; }

    /// An embedding script that does this when a conference is made, with the `options` of its maker, and `tell(event,
    /// data)` for what it was asked to tell.
    void setDeed(const QByteArray& deed)
    {
        setScript({ R"JS(
            const listeners = {};
            const tell = (event, data) => listeners[event]?.(data);
            const pause = (time) => new Promise((done) => setTimeout(done, time));
            window.JitsiMeetExternalAPI = class {
                constructor(domain, options) { this.act(options); }
                addListener(name, listener) { listeners[name] = listener; }
                executeCommand() { }
                async act(options) {
                    await pause(0);)JS"
            + deed + "} };" });
    }

    QHash<QString, Answer> answers; ///< By path.
    QJsonObject told;

private:
    QHttpServer m_http;
    quint16 m_port = 0;
};

} // namespace kelvara::test
