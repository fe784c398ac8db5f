#pragma once

#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/web/ConferenceBridge.h"

#include <QPointer>
#include <QSet>
#include <QTimer>

#include <chrono>

namespace kelvara {

class ConferenceProfile;
class ConferenceWebPage;
class ConferenceWebView;

/// How long a server may take.
struct ConferencePatience
{
    std::chrono::milliseconds script { 15000 }; ///< Until the embedding script has come.
    std::chrono::milliseconds client { 30000 }; ///< From then until the client gives its first sign of life.
    std::chrono::milliseconds page { 30000 }; ///< For a page whose scripts do not come to an end.
};

/// A conference in the web engine: our own small page at the server's origin loads the server's embedding script, which
/// brings its web client. Main thread.
class WebConferencePage final : public ConferencePage
{
    Q_OBJECT
public:
    explicit WebConferencePage(ConferencePatience patience = {});
    ~WebConferencePage() override;

    [[nodiscard]] QWidget* widget() override;
    void open(const ConferenceInvitation& invitation) override;
    void hangUp() override;

private:
    void installScripts();
    void reported(const QString& json);
    void scriptFailed(const QVariantMap& data);
    void clientFailed(const QVariantMap& data);
    void clientLives();
    void feelPulse();
    void fail(ConferenceErrorKind kind, const QVariantMap& data = {});

    const ConferencePatience m_patience;
    QString m_invitation; ///< JSON, until the page is there.
    ConferenceBridge m_bridge;
    QTimer m_waiting;
    QTimer m_pulse;
    int m_missedBeats = 0;
    QSet<QString> m_told; ///< What is told once.
    bool m_isUntrusted = false;
    bool m_isOver = false;
    // The view shows the page, the page uses the profile: they go in this order.
    std::unique_ptr<ConferenceProfile> m_profile;
    std::unique_ptr<ConferenceWebPage> m_page;
    QPointer<ConferenceWebView> m_view; ///< Goes with its parent, if it has one by then.
};

} // namespace kelvara
