#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Foundation/MainQueue.h"

#include <QVariantMap>

#include <memory>
#include <optional>

namespace kelvara {

/// Hears of a conference's life. Called on the main thread, never inside `JitsiMeetView::join`; every method may delete
/// the view or join another conference.
///
/// The data is the web client's own event data ("roomName", "id", "displayName" …), with "url", the room's address
/// without the token, added. Absent when the client sent none.
class KELVARA_EXPORT JitsiMeetViewDelegate
{
public:
    JitsiMeetViewDelegate() = default;
    virtual ~JitsiMeetViewDelegate() = default;
    JitsiMeetViewDelegate(const JitsiMeetViewDelegate&) { }
    JitsiMeetViewDelegate& operator=(const JitsiMeetViewDelegate&) { return *this; }

    /// The server's client is there and about to join.
    virtual void conferenceWillJoin(const std::optional<QVariantMap>& data) = 0;
    virtual void conferenceJoined(const std::optional<QVariantMap>& data) = 0;
    /// The conference is over, or could not be joined: exactly once for every `join`. When something went wrong,
    /// "error" names what, by a word of `ConferenceError::name`, and "message" is the sentence that the view shows.
    virtual void conferenceTerminated(const std::optional<QVariantMap>& data) = 0;

    /// Expires with the delegate; how a view notices that it has gone.
    [[nodiscard]] std::weak_ptr<const void> lifeToken() const { return m_life.token(); }

private:
    LifeToken m_life;
};

} // namespace kelvara
