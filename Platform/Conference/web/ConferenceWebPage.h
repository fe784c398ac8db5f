#pragma once

#include "Platform/Conference/ConferenceInvitation.h"

#include <QWebEnginePage>

namespace kelvara {

/// The browser's page of a conference, which stays where it was opened: no other page, window, dialog, file, device or
/// permission is to be had from here but camera and microphone, and these for the conference server only. Main thread.
class ConferenceWebPage final : public QWebEnginePage
{
    Q_OBJECT
public:
    ConferenceWebPage(QWebEngineProfile* profile, const ConferenceInvitation& invitation, QObject* parent);

    /// Shows our own page, which belongs to the server's origin as any page that embeds its script might.
    void openAtServer(const QString& html);

Q_SIGNALS:
    void cameraGranted();
    void microphoneGranted();
    /// A server's certificate was not accepted.
    void untrusted();
    /// The renderer has gone.
    void crashed();

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles, const QStringList& types) override;
    void javaScriptAlert(const QUrl& origin, const QString& message) override;
    bool javaScriptConfirm(const QUrl& origin, const QString& message) override;
    bool javaScriptPrompt(
        const QUrl& origin, const QString& message, const QString& defaultValue, QString* result) override;
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel level, const QString& message, int line, const QString& source) override;

private:
    void decide(const QUrl& origin, Feature feature);

    const ConferenceInvitation m_invitation;
    bool m_isOpening = false;
};

} // namespace kelvara
