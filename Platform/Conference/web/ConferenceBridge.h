#pragma once

#include <QObject>
#include <QString>

namespace kelvara {

/// What the page's own script sees of us, over the web channel, in a world of its own that the server's scripts do not
/// reach. Main thread.
class ConferenceBridge final : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

public Q_SLOTS:
    /// The page listens.
    void ready() { Q_EMIT isReady(); }
    /// Something happened: a JSON object with "event" and "data".
    void report(const QString& json) { Q_EMIT reported(json); }

Q_SIGNALS:
    void isReady();
    void reported(const QString& json);
    // To the page.
    void invited(const QString& json);
    void hungUp();
};

} // namespace kelvara
