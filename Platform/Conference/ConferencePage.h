#pragma once

#include "Platform/Conference/ConferenceError.h"
#include "Platform/Conference/ConferenceInvitation.h"
#include "Platform/Foundation/Export.h"

#include <QObject>
#include <QVariantMap>

class QWidget;

namespace kelvara {

/// One conference from its opening to its end, however it is brought about: the web engine's page, or what a test puts
/// in its place. Made by a `ConferenceService` for one `open`, deleted when it is over. Signals come from the event
/// loop, never inside a call. Main thread.
class KELVARA_EXPORT ConferencePage : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// What is to be seen; owned by the page, and given a parent by whoever shows it. Null: nothing.
    [[nodiscard]] virtual QWidget* widget() = 0;

    /// Joins. Once.
    virtual void open(const ConferenceInvitation& invitation) = 0;

    /// Takes leave; `ended` follows as soon as the client has done so.
    virtual void hangUp() = 0;

Q_SIGNALS:
    void willJoin(const QVariantMap& data);
    /// The client has something to show, be it only its waiting room.
    void presented();
    /// Camera pictures are asked for.
    void wantsCamera();
    void joined(const QVariantMap& data);
    /// The client has left the conference, by itself or because it was told to.
    void ended(const QVariantMap& data);
    void failed(const kelvara::ConferenceError& error, const QVariantMap& data);
};

} // namespace kelvara
