#include "Platform/Conference/web/ConferenceWebPage.h"

#include <QAuthenticator>
#include <QPointer>
#include <QWebEngineCertificateError>
#include <QWebEngineClientCertificateSelection>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>

namespace kelvara {

ConferenceWebPage::ConferenceWebPage(
    QWebEngineProfile* profile, const ConferenceInvitation& invitation, QObject* parent)
    : QWebEnginePage(profile, parent), m_invitation(invitation)
{
    setBackgroundColor(QColor(0x09, 0x12, 0x19));
    // Later, as whoever hears that the camera is wanted may end the call, and the browser is in the midst of asking.
    connect(this, &QWebEnginePage::featurePermissionRequested, this, &ConferenceWebPage::decide, Qt::QueuedConnection);
    connect(this, &QWebEnginePage::certificateError, this, [this](QWebEngineCertificateError error) {
        error.rejectCertificate();
        Q_EMIT untrusted();
    });
    connect(this, &QWebEnginePage::renderProcessTerminated, this, &ConferenceWebPage::crashed);
    connect(this, &QWebEnginePage::authenticationRequired, this,
        [](const QUrl&, QAuthenticator* authenticator) { *authenticator = QAuthenticator(); });
    connect(this, &QWebEnginePage::proxyAuthenticationRequired, this,
        [](const QUrl&, QAuthenticator* authenticator, const QString&) { *authenticator = QAuthenticator(); });
    connect(this, &QWebEnginePage::selectClientCertificate, this,
        [](QWebEngineClientCertificateSelection selection) { selection.selectNone(); });
    connect(this, &QWebEnginePage::fullScreenRequested, this,
        [](QWebEngineFullScreenRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::quotaRequested, this, [](QWebEngineQuotaRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
        [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::fileSystemAccessRequested, this,
        [](QWebEngineFileSystemAccessRequest request) { request.reject(); });
}

void ConferenceWebPage::openAtServer(const QString& html)
{
    m_isOpening = true;
    setHtml(html, m_invitation.origin());
}

void ConferenceWebPage::decide(const QUrl& origin, Feature feature)
{
    const bool isCamera = feature == MediaVideoCapture || feature == MediaAudioVideoCapture;
    const bool isMicrophone = feature == MediaAudioCapture || feature == MediaAudioVideoCapture;
    if (!(isCamera || isMicrophone) || !m_invitation.isOnServer(origin)) {
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
        return;
    }
    const QPointer<ConferenceWebPage> self(this);
    if (isMicrophone)
        Q_EMIT microphoneGranted();
    if (isCamera && self)
        Q_EMIT cameraGranted();
    if (!self)
        return;
    setFeaturePermission(origin, feature, PermissionGrantedByUser);
}

bool ConferenceWebPage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    if (isMainFrame)
        return std::exchange(m_isOpening, false);
    return m_invitation.isOnServer(url) || url.scheme() == QLatin1String("about");
}

QWebEnginePage* ConferenceWebPage::createWindow(WebWindowType)
{
    return nullptr;
}

QStringList ConferenceWebPage::chooseFiles(FileSelectionMode, const QStringList&, const QStringList&)
{
    return {};
}

void ConferenceWebPage::javaScriptAlert(const QUrl&, const QString&) { }

bool ConferenceWebPage::javaScriptConfirm(const QUrl&, const QString&)
{
    return false;
}

bool ConferenceWebPage::javaScriptPrompt(const QUrl&, const QString&, const QString&, QString*)
{
    return false;
}

void ConferenceWebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int, const QString&)
{
    // Clients write addresses there, and an address may hold the token.
}

} // namespace kelvara
