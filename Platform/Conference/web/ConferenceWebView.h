#pragma once

#include <QWebEngineView>

namespace kelvara {

/// Shows a conference's page, and no dialog over it: the browser's own for choosing a colour, which no handler of a
/// page is asked about, is turned away. Main thread.
class ConferenceWebView final : public QWebEngineView
{
    Q_OBJECT
public:
    ConferenceWebView();

protected:
    void childEvent(QChildEvent* event) override;
};

} // namespace kelvara
