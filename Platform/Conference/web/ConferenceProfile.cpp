#include "Platform/Conference/web/ConferenceProfile.h"

#include <QSet>
#include <QWebEngineDownloadRequest>
#include <QWebEngineNotification>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInterceptor>

namespace kelvara {

namespace {

/// Keeps what comes from afar away from what lies here: files, resources of the application, the browser's own pages.
class WebOnly final : public QWebEngineUrlRequestInterceptor
{
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo& info) override
    {
        static const QSet<QString> web { QStringLiteral("https"), QStringLiteral("http"), QStringLiteral("wss"),
            QStringLiteral("ws"), QStringLiteral("data"), QStringLiteral("blob"), QStringLiteral("about") };
        if (!web.contains(info.requestUrl().scheme()))
            info.block(true);
    }
};

void restrict(QWebEngineSettings& settings)
{
    using Setting = QWebEngineSettings::WebAttribute;
    for (const Setting off : { Setting::LocalContentCanAccessFileUrls, Setting::LocalContentCanAccessRemoteUrls,
             Setting::JavascriptCanOpenWindows, Setting::JavascriptCanAccessClipboard, Setting::JavascriptCanPaste,
             Setting::PluginsEnabled, Setting::PdfViewerEnabled, Setting::FullScreenSupportEnabled,
             Setting::ScreenCaptureEnabled, Setting::AllowRunningInsecureContent,
             Setting::AllowGeolocationOnInsecureOrigins, Setting::AllowWindowActivationFromJavaScript,
             Setting::NavigateOnDropEnabled, Setting::HyperlinkAuditingEnabled, Setting::DnsPrefetchEnabled,
             Setting::ErrorPageEnabled, Setting::FocusOnNavigationEnabled })
        settings.setAttribute(off, false);
    // The representative is heard without a touch first.
    settings.setAttribute(Setting::PlaybackRequiresUserGesture, false);
    settings.setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

} // namespace

ConferenceProfile::ConferenceProfile(QObject* parent) : QWebEngineProfile(parent)
{
    setHttpCacheType(MemoryHttpCache);
    setPersistentCookiesPolicy(NoPersistentCookies);
    setHttpAcceptLanguage(QStringLiteral("tr,en;q=0.7"));
    setSpellCheckEnabled(false);
    setNotificationPresenter([](std::unique_ptr<QWebEngineNotification>) {});
    setUrlRequestInterceptor(new WebOnly(this));
    connect(this, &QWebEngineProfile::downloadRequested, this,
        [](QWebEngineDownloadRequest* download) { download->cancel(); });
    restrict(*settings());
}

} // namespace kelvara
