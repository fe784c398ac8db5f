#include "Kelvara/ConsoleLine.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Conference/JitsiMeetConferenceOptionsBuilder.h"

#include <array>

namespace kelvara {

namespace {

/// All set to false: the call is a talk with a representative and nothing else. "meeting-name.enabled" comes twice and
/// "resolution" as a switch, as conference servers have been getting them from the start.
constexpr std::array kSwitchedOff {
    "add-people.enabled",
    "invite.enabled",
    "raise-hand.enabled",
    "video-share.enabled",
    "toolbox.alwaysVisible",
    "toolbox.enabled",
    "live-streaming.enabled",
    "chat.enabled",
    "meeting-password.enabled",
    "meeting-name.enabled",
    "calendar.enabled",
    "conference-timer.enabled",
    "call-integration.enabled",
    "close-captions.enabled",
    "kick-out.enabled",
    "meeting-name.enabled",
    "pip.enabled",
    "recording.enabled",
    "resolution",
    "server-url-change.enabled",
    "tile-view.enabled",
};

} // namespace

void QorvelKycViewPrivate::setJitsiConference(const QString& url, const QString& room, const QString& token)
{
    if (selectedViewType != ViewType::jitsi)
        return;
    if (const ControlButton* const focused = focusedControl())
        focusBeforeCall = focused->showsFocus();
    add_removeJitsiInfoViews(false);
    add_removeJitsiView(true);
    openJitsiMeet(url, room, token);
}

void QorvelKycViewPrivate::openJitsiMeet(const QString& url, const QString& room, const QString& token)
{
    const auto options = JitsiMeetConferenceOptions::fromBuilder([&](JitsiMeetConferenceOptionsBuilder& builder) {
        builder.setServerURL(QUrl(url, QUrl::StrictMode)); // an invalid one counts as none
        builder.setRoom(room);
        builder.setToken(token);
        builder.setAudioOnly(false);
        builder.setAudioMuted(false);
        builder.setVideoMuted(false);
        builder.setWelcomePageEnabled(false);
        for (const char* flag : kSwitchedOff)
            builder.setFeatureFlag(QString::fromLatin1(flag), false);
    });
    // The view that joins is not the one on the screen; the call is seen there all the same, as a process has only one.
    jitsiMeetView = new JitsiMeetView(services.conference, q);
    jitsiMeetView->hide();
    jitsiMeetView->setTextScale(textScale);
    watchCall(jitsiMeetView);
    jitsiMeetView->setDelegate(this);
    jitsiMeetView->join(options);
}

void QorvelKycViewPrivate::conferenceWillJoin(const std::optional<QVariantMap>&)
{
    printLine("conferenceWillJoin");
}

void QorvelKycViewPrivate::conferenceJoined(const std::optional<QVariantMap>&)
{
    printLine("conferenceJoined");
    ++joinedCalls;
    inJitsi = true;
    announcer->say(QString::fromUtf8("Görüşme başladı."));
}

void QorvelKycViewPrivate::conferenceTerminated(const std::optional<QVariantMap>& data)
{
    onMain([this] { cleanUp(); });
    // A failure is said by the sentence that stands on the screen.
    if (!data || !data->contains(QStringLiteral("error")))
        announcer->say(QString::fromUtf8("Görüşme sona erdi."));
    if (const auto callback = didConferenceTerminated) { // a copy: it may replace itself
        const QPointer<QorvelKycView> view(q);
        const int before = joinedCalls;
        callback(data);
        if (!view || joinedCalls != before) // in a dialog of the callback's another call has begun
            return;
    }
    inJitsi = false;
}

void QorvelKycViewPrivate::cleanUp()
{
    add_removeJitsiView(false);
}

QList<JitsiMeetView*> QorvelKycViewPrivate::callViews() const
{
    return q->findChildren<JitsiMeetView*>(QString(), Qt::FindDirectChildrenOnly);
}

void QorvelKycViewPrivate::settleCall()
{
    if (selectedViewType == ViewType::jitsi && jitsiMeetView->isInConference())
        return;
    jitsiMeetView->leave();
    for (JitsiMeetView* call : callViews())
        call->hide();
}

void QorvelKycViewPrivate::raiseCall()
{
    if (!jitsiMeetView->isInConference())
        return;
    add_removeJitsiInfoViews(false);
    for (JitsiMeetView* call : callViews())
        call->raise();
}

} // namespace kelvara
