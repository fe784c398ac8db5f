#include "Platform/Conference/web/WebConferencePage.h"

#include "Platform/Conference/web/ConferenceProfile.h"
#include "Platform/Conference/web/ConferenceWebPage.h"
#include "Platform/Conference/web/ConferenceWebView.h"

#include <QFile>
#include <QJsonDocument>
#include <QSet>
#include <QWebChannel>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

static void initConferenceResources()
{
    Q_INIT_RESOURCE(conference);
}

namespace kelvara {

namespace {

constexpr qsizetype kLongestReport = 64 * 1024; ///< Events are short; whatever is longer is none.
constexpr int kBeatsOfPatience = 6;

QString resource(const char* name)
{
    QFile file(QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QWebEngineScript script(quint32 world, const QString& source)
{
    QWebEngineScript made;
    made.setWorldId(world);
    made.setInjectionPoint(QWebEngineScript::DocumentReady);
    made.setRunsOnSubFrames(false);
    made.setSourceCode(source);
    return made;
}

/// How the client names a token that it will not have, or none where it wants one.
const QSet<QString>& refusals()
{
    static const QSet<QString> names { QStringLiteral("connection.passwordRequired"),
        QStringLiteral("conference.authenticationRequired"), QStringLiteral("conference.connectionError.notAllowed") };
    return names;
}

const QSet<QString>& losses()
{
    static const QSet<QString> names { QStringLiteral("connection.droppedError"),
        QStringLiteral("connection.serverError"), QStringLiteral("conference.iceFailed"),
        QStringLiteral("conference.focusDisconnected"), QStringLiteral("conference.videobridgeNotAvailable") };
    return names;
}

} // namespace

WebConferencePage::WebConferencePage(ConferencePatience patience) : m_patience(patience)
{
    m_waiting.setSingleShot(true);
    connect(&m_waiting, &QTimer::timeout, this, [this] { fail(ConferenceErrorKind::NoAnswer); });
    connect(&m_pulse, &QTimer::timeout, this, &WebConferencePage::feelPulse);
    connect(&m_bridge, &ConferenceBridge::isReady, this,
        [this] { Q_EMIT m_bridge.invited(std::exchange(m_invitation, QString())); });
    connect(&m_bridge, &ConferenceBridge::reported, this, &WebConferencePage::reported);
}

WebConferencePage::~WebConferencePage()
{
    delete m_view.data();
}

QWidget* WebConferencePage::widget()
{
    return m_view;
}

void WebConferencePage::open(const ConferenceInvitation& invitation)
{
    initConferenceResources();
    m_invitation = QString::fromUtf8(QJsonDocument(invitation.toJson()).toJson(QJsonDocument::Compact));
    m_profile = std::make_unique<ConferenceProfile>();
    m_page = std::make_unique<ConferenceWebPage>(m_profile.get(), invitation, nullptr);
    connect(m_page.get(), &ConferenceWebPage::untrusted, this, [this] { m_isUntrusted = true; });
    connect(m_page.get(), &ConferenceWebPage::crashed, this, [this] { fail(ConferenceErrorKind::PageCrashed); });
    connect(m_page.get(), &ConferenceWebPage::microphoneGranted, this, &WebConferencePage::clientLives);
    connect(m_page.get(), &ConferenceWebPage::cameraGranted, this, [this] {
        clientLives();
        Q_EMIT wantsCamera();
    });
    installScripts();
    m_view = new ConferenceWebView;
    m_view->setPage(m_page.get());
    m_waiting.start(m_patience.script);
    m_pulse.start(m_patience.page / kBeatsOfPatience);
    m_page->openAtServer(resource(":/kelvara/conference/conference.html"));
}

void WebConferencePage::installScripts()
{
    auto* channel = new QWebChannel(m_page.get());
    channel->registerObject(QStringLiteral("bridge"), &m_bridge);
    m_page->setWebChannel(channel, QWebEngineScript::ApplicationWorld);
    m_page->scripts().insert(script(QWebEngineScript::MainWorld, resource(":/kelvara/conference/conference.js")));
    m_page->scripts().insert(script(QWebEngineScript::ApplicationWorld,
        resource(":/qtwebchannel/qwebchannel.js") + resource(":/kelvara/conference/bridge.js")));
}

void WebConferencePage::hangUp()
{
    Q_EMIT m_bridge.hungUp();
}

void WebConferencePage::reported(const QString& json)
{
    if (m_isOver || json.size() > kLongestReport)
        return;
    const QVariantMap report = QJsonDocument::fromJson(json.toUtf8()).toVariant().toMap();
    const QString event = report.value(QStringLiteral("event")).toString();
    const QVariantMap data = report.value(QStringLiteral("data")).toMap();
    static const QSet<QString> once { QStringLiteral("willJoin"), QStringLiteral("presented"),
        QStringLiteral("joined") };
    if (once.contains(event)) {
        if (m_told.contains(event))
            return;
        m_told.insert(event);
    }
    if (event == QLatin1String("scriptFailed")) {
        scriptFailed(data);
    } else if (event == QLatin1String("willJoin")) {
        m_waiting.start(m_patience.client);
        Q_EMIT willJoin(data);
    } else if (event == QLatin1String("presented")) {
        Q_EMIT presented();
    } else if (event == QLatin1String("joined")) {
        clientLives();
        Q_EMIT joined(data);
    } else if (event == QLatin1String("left")) {
        m_isOver = true;
        m_waiting.stop();
        m_pulse.stop();
        Q_EMIT ended(data);
    } else if (event == QLatin1String("error")) {
        clientFailed(data);
    } else if (event == QLatin1String("alive")) {
        clientLives();
    }
}

void WebConferencePage::clientLives()
{
    // From here on the person may be waiting to be let in, and that takes as long as it takes.
    m_waiting.stop();
}

void WebConferencePage::feelPulse()
{
    // Beats are counted, not time, as a machine may have slept.
    if (m_missedBeats++ >= kBeatsOfPatience) {
        fail(ConferenceErrorKind::NoAnswer);
        return;
    }
    m_page->runJavaScript(QStringLiteral("0"), QWebEngineScript::ApplicationWorld,
        [page = QPointer<WebConferencePage>(this)](const QVariant&) {
            if (page)
                page->m_missedBeats = 0;
        });
}

void WebConferencePage::scriptFailed(const QVariantMap& data)
{
    if (m_isUntrusted)
        fail(ConferenceErrorKind::ServerUntrusted);
    else if (data.value(QStringLiteral("status")).toInt() == 0)
        fail(ConferenceErrorKind::ServerUnreachable);
    else
        fail(ConferenceErrorKind::NoConferenceServer, data);
}

void WebConferencePage::clientFailed(const QVariantMap& data)
{
    const QString name = data.value(QStringLiteral("name")).toString();
    if (refusals().contains(name))
        fail(ConferenceErrorKind::TokenRefused, data);
    else if (!data.value(QStringLiteral("isFatal")).toBool())
        clientLives(); // it goes on by itself
    else if (losses().contains(name))
        fail(ConferenceErrorKind::ConnectionLost, data);
    else
        fail(ConferenceErrorKind::ClientFailed, data);
}

void WebConferencePage::fail(ConferenceErrorKind kind, const QVariantMap& data)
{
    if (std::exchange(m_isOver, true))
        return;
    m_waiting.stop();
    m_pulse.stop();
    Q_EMIT failed({ kind, data.value(QStringLiteral("name")).toString() }, data);
}

} // namespace kelvara
