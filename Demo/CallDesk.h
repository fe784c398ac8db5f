#pragma once

#include <QImage>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <memory>

namespace kelvara::demo {

/// Where the representative of the demo sits: arranges a conference, and ends it. Main thread.
class CallDesk : public QObject
{
    Q_OBJECT
public:
    /// Null where the library was built without video calls.
    [[nodiscard]] static std::unique_ptr<CallDesk> make();

    struct Conference
    {
        QString url;
        QString room;
        QString token;
    };
    /// Opens a conference; a null picture leaves the device's own camera to the call, another one is what a pretended
    /// camera shows of the person.
    [[nodiscard]] virtual Conference arrange(const QImage& ownPicture) = 0;
    virtual void hangUp() = 0;
    /// What the desk saw of the person: for result.json.
    [[nodiscard]] virtual QJsonObject report() const = 0;
};

} // namespace kelvara::demo
