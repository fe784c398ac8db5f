#include "Platform/Foundation/CameraArbiter.h"
#include "Tests/Kelvara/CallStep.h"

#include <QGuiApplication>
#include <QJsonArray>

#include <gmock/gmock.h>

namespace kelvara::test {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;
using enum ViewType;

TEST_F(Call, OnlyItsStepOpensOne)
{
    open({ idPhoto });
    for (const ViewType step : { idPhoto, selfie, nfcRead }) {
        stage->d().showViewType(step);
        settle();
        call();
        EXPECT_TRUE(conference->pages.empty());
        EXPECT_FALSE(stage->d().jitsiMeetView->isInConference());
    }
    bool during = true;
    stage->delegate.during = [&](QorvelKycView&, const QString& told) {
        if (told == "jitsi") {
            call();
            during = !conference->pages.empty();
        }
    };
    stage->view->showJitsiView();
    EXPECT_FALSE(during) << "inside the callback the step is still the one before";
    settle();
    EXPECT_TRUE(showsWaiting());
}

TEST_F(Call, TheHostMayAnswerAtOnceWhereTheCallIsTheFirstStep)
{
    open({ idPhoto });
    stage->delegate.during = [&](QorvelKycView&, const QString& told) {
        if (told == "jitsi")
            call();
    };
    stage->setSteps({ jitsi, selfie });
    settle();
    EXPECT_TRUE(seesCall());
    EXPECT_FALSE(showsWaiting());
}

TEST_F(Call, HandsOverEverySettingInOrder)
{
    open();
    call();
    ASSERT_TRUE(conference->page()->invitation);
    const QJsonObject invitation = conference->page()->invitation->toJson();
    EXPECT_EQ(invitation["origin"], "https://meet.example.com");
    EXPECT_EQ(invitation["room"], "room");
    EXPECT_EQ(invitation["token"], "token");
    QStringList names;
    for (const auto& setting : invitation["settings"].toArray()) {
        names << setting[0].toString();
        EXPECT_FALSE(setting[1].toBool(true));
        EXPECT_EQ(setting[2].toBool(), names.size() > 4);
    }
    EXPECT_EQ(names,
        QStringList({ "audioOnly", "audioMuted", "videoMuted", "welcomePageEnabled", "add-people.enabled",
            "invite.enabled", "raise-hand.enabled", "video-share.enabled", "toolbox.alwaysVisible", "toolbox.enabled",
            "live-streaming.enabled", "chat.enabled", "meeting-password.enabled", "meeting-name.enabled",
            "calendar.enabled", "conference-timer.enabled", "call-integration.enabled", "close-captions.enabled",
            "kick-out.enabled", "meeting-name.enabled", "pip.enabled", "recording.enabled", "resolution",
            "server-url-change.enabled", "tile-view.enabled" }));
}

TEST_F(Call, IsSeenFromJoiningToItsEnd)
{
    open();
    JitsiMeetView* const embedded = stage->d().jitsiMeetView;
    call();
    EXPECT_NE(stage->d().jitsiMeetView, embedded) << "the view that joins is a new one";
    EXPECT_TRUE(stage->isShown(embedded));
    EXPECT_FALSE(stage->isShown(stage->d().jitsiMeetView));
    EXPECT_EQ(embedded->geometry(), stage->view->rect());
    EXPECT_FALSE(showsWaiting());
    EXPECT_TRUE(seesCall());
    EXPECT_TRUE(cover()) << "while it connects";

    CaptureStdout();
    Q_EMIT conference->page()->willJoin({});
    settle();
    EXPECT_FALSE(stage->view->inJitsi());
    Q_EMIT conference->page()->joined({ { "roomName", "room" } });
    settle();
    EXPECT_EQ(GetCapturedStdout(), "conferenceWillJoin\nconferenceJoined\n");
    EXPECT_TRUE(stage->view->inJitsi());
    settle();
    EXPECT_FALSE(cover());
    EXPECT_FALSE(reachesCloseButton()) << "the call lies over the controls";

    Q_EMIT conference->page()->ended({ { "roomName", "room" } });
    settle();
    EXPECT_TRUE(inJitsiAtItsEnd);
    EXPECT_FALSE(stage->view->inJitsi());
    EXPECT_EQ(terminated, 1);
    EXPECT_EQ(last.value("roomName"), "room");
    EXPECT_EQ(last.value("url"), "https://meet.example.com/room");
    settle();
    EXPECT_EQ(conference->alive(), 0);
    EXPECT_FALSE(stage->isShown(stage->d().jitsiMeetView));
    EXPECT_FALSE(showsWaiting()) << "the end changes nothing else on the screen";
    EXPECT_TRUE(reachesCloseButton()) << "what is left of the call lets touches through";
}

TEST_F(Call, ASecondOneReplacesTheFirst)
{
    open();
    join();
    const QPointer<ScriptedPage> first = conference->page();
    call("https://other.example.com");
    settle();
    EXPECT_FALSE(first) << "no old page lives on";
    EXPECT_EQ(terminated, 1) << "of the first";
    EXPECT_TRUE(seesCall());
    Q_EMIT conference->page()->joined({});
    settle();
    EXPECT_TRUE(stage->view->inJitsi());
    Q_EMIT conference->page()->ended({});
    settle();
    EXPECT_EQ(terminated, 2);
    EXPECT_TRUE(reachesCloseButton());
    EXPECT_EQ(callViews().size(), 3) << "one made with the view, one a call";
}

TEST_F(Call, TwoInOneTurnAndOneFromTheEndOfAnother)
{
    open();
    call();
    call("https://other.example.com");
    settle();
    EXPECT_EQ(terminated, 1);
    EXPECT_EQ(conference->alive(), 1);
    stage->view->setDidConferenceTerminated([&](const auto&) {
        if (++terminated == 2)
            call();
    });
    Q_EMIT conference->page()->ended({});
    settle();
    EXPECT_EQ(conference->alive(), 1);
    EXPECT_TRUE(seesCall());
}

TEST_F(Call, OneBegunInADialogOfTheEndGoesOn)
{
    open();
    join();
    stage->view->setDidConferenceTerminated([&](const auto&) {
        if (++terminated == 1)
            join(); // which runs events, as a dialog does
    });
    Q_EMIT conference->page()->ended({});
    settle();
    EXPECT_TRUE(stage->view->inJitsi());
    EXPECT_TRUE(seesCall());
}

TEST_F(Call, HasTheCameraUntilItsEnd)
{
    open();
    EXPECT_TRUE(spinUntil([&] { return stage->view->isScanning(); }));
    join();
    settle();
    EXPECT_FALSE(stage->view->isScanning());
    Q_EMIT conference->page()->ended({});
    settle();
    EXPECT_TRUE(spinUntil([&] { return stage->view->isScanning(); }));

    join();
    stage->view->stopScanning();
    Q_EMIT conference->page()->ended({});
    settle();
    EXPECT_TRUE(spinUntil([] { return !CameraArbiter::shared().isInterrupted(); }));
    settle();
    EXPECT_FALSE(stage->view->isScanning()) << "the host stopped it meanwhile";
    stage->view->startScanning();
    settle();
    EXPECT_TRUE(stage->view->isScanning());

    join();
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationHidden);
    Q_EMIT conference->page()->ended({});
    settle();
    QTest::qWait(400);
    EXPECT_FALSE(stage->view->isScanning()) << "no camera starts in the background";
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    settle();
    EXPECT_TRUE(stage->view->isScanning());
}

TEST_F(Call, EndsWithItsStep)
{
    open({ selfie, jitsi });
    stage->view->showJitsiView();
    call(); // before the screen has changed: what is queued must not cover the call
    settle();
    EXPECT_TRUE(seesCall());
    EXPECT_FALSE(showsWaiting());
    Q_EMIT conference->page()->joined({});
    settle();
    stage->view->showSelfieView();
    settle();
    EXPECT_FALSE(seesCall());
    EXPECT_EQ(conference->page()->hangUps, 1);
    EXPECT_EQ(terminated, 0) << "it takes leave first";
    EXPECT_TRUE(spinUntil([&] { return terminated == 1; })) << "but does not wait for long";
    EXPECT_TRUE(spinUntil([&] { return stage->view->isScanning(); }));
}

} // namespace
} // namespace kelvara::test
