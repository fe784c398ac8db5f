#include "Platform/Conference/ConferenceCover.h"
#include "Platform/Conference/JitsiMeetConferenceOptionsBuilder.h"
#include "Platform/Conference/JitsiMeetView.h"
#include "Platform/Foundation/CameraArbiter.h"
#include "Tests/Support/ScriptedConference.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

JitsiMeetConferenceOptions options(const QString& room = QStringLiteral("room"), bool audioOnly = false)
{
    return JitsiMeetConferenceOptions::fromBuilder([&](JitsiMeetConferenceOptionsBuilder& builder) {
        builder.setServerURL(QUrl(QStringLiteral("https://meet.example.com/tenant/")));
        builder.setRoom(room);
        builder.setAudioOnly(audioOnly);
    });
}

/// Runs what is queued, deletions included.
void settle()
{
    QTest::qWait(10);
}

TEST(ConferenceOptions, KeepEverySettingAsItWasMade)
{
    const auto made = JitsiMeetConferenceOptions::fromBuilder([](JitsiMeetConferenceOptionsBuilder& builder) {
        builder.setServerURL(QUrl(QStringLiteral("https://a b.example"), QUrl::StrictMode));
        builder.setFeatureFlag(QStringLiteral("chat.enabled"), true);
        builder.setVideoMuted(true);
        builder.setFeatureFlag(QStringLiteral("audioOnly"), true); // a flag of an option's name is no option
        builder.setFeatureFlag(QStringLiteral("chat.enabled"), false);
    });
    EXPECT_FALSE(made.serverURL());
    EXPECT_FALSE(made.room());
    EXPECT_FALSE(made.audioOnly());
    EXPECT_EQ(made.videoMuted(), true);
    EXPECT_EQ(made.featureFlag(QStringLiteral("chat.enabled")), false) << "the last counts";
    EXPECT_FALSE(made.featureFlag(QStringLiteral("invite.enabled")));
    using Setting = JitsiMeetConferenceOptions::Setting;
    EXPECT_EQ(made.settings(),
        QList<Setting>({ { "chat.enabled", true, true }, { "videoMuted", true, false }, { "audioOnly", true, true },
            { "chat.enabled", false, true } }));
}

TEST(ConferenceInvitations, AreForARoomOnAServer)
{
    struct Row
    {
        const char* room;
        const char* address;
    };
    for (const Row& row :
        { Row { "room", "https://meet.example.com/tenant/room" }, Row { "a/b", "https://meet.example.com/tenant/a/b" },
            Row { "a#b?c", "https://meet.example.com/tenant/a%23b%3Fc" },
            Row { "şube \"1\"", "https://meet.example.com/tenant/%C5%9Fube%20%221%22" } }) {
        const auto made = ConferenceInvitation::from(options(QString::fromUtf8(row.room)));
        ASSERT_TRUE(std::holds_alternative<ConferenceInvitation>(made));
        const auto& invitation = std::get<ConferenceInvitation>(made);
        EXPECT_EQ(invitation.roomURL().toString(QUrl::FullyEncoded), row.address);
        EXPECT_EQ(invitation.toJson()["room"], QString::fromUtf8(row.room)) << "the page gets it unchanged";
        EXPECT_EQ(invitation.toJson()["domain"], "meet.example.com/tenant");
        EXPECT_TRUE(invitation.isOnServer(QUrl(QStringLiteral("https://meet.example.com:443/x"))));
        for (const char* elsewhere : { "http://meet.example.com", "https://meet.example.com:444",
                 "https://evil.example.com", "https://meet.example.com.evil", "file:///meet.example.com" })
            EXPECT_FALSE(invitation.isOnServer(QUrl(QString::fromLatin1(elsewhere)))) << elsewhere;
    }
    for (const char* nowhere : { "", "  " }) {
        const auto made = ConferenceInvitation::from(options(QString::fromLatin1(nowhere)));
        ASSERT_TRUE(std::holds_alternative<ConferenceError>(made));
        EXPECT_EQ(std::get<ConferenceError>(made).kind, ConferenceErrorKind::NoRoom);
    }
}

/// A window with room for conference views.
class ConferenceViews : public testing::Test
{
protected:
    ConferenceViews() { window.resize(390, 844); }
    JitsiMeetView* add(bool isShown = true)
    {
        auto* view = new JitsiMeetView(service, &window);
        view->resize(window.size());
        view->setDelegate(&delegate);
        view->setVisible(isShown);
        return view;
    }
    [[nodiscard]] QWidget* place() const { return service->page()->label->parentWidget(); }

    std::shared_ptr<ScriptedConference> service = std::make_shared<ScriptedConference>();
    RecordingConferenceDelegate delegate;
    QWidget window;
};

TEST_F(ConferenceViews, ShowTheCallOnTheViewThatStandsInAWindow)
{
    JitsiMeetView* const hidden = add(false);
    hidden->join(options());
    EXPECT_EQ(place(), nullptr) << "nothing is on the screen yet";
    JitsiMeetView* const shown = add();
    EXPECT_EQ(place(), nullptr);
    window.show();
    EXPECT_EQ(place(), shown);
    add(); // put on the screen later
    EXPECT_EQ(place(), shown) << "a call that is seen stays where it is";
    hidden->show();
    EXPECT_EQ(place(), hidden) << "the view that joined comes first";
    hidden->hide();
    EXPECT_NE(place(), nullptr);
    window.hide();
    EXPECT_NE(place(), nullptr);
    EXPECT_EQ(service->alive(), 1);
}

TEST_F(ConferenceViews, TellTheirDelegateOnceWhateverHappens)
{
    window.show();
    const std::vector<std::pair<const char*, std::function<void(JitsiMeetView*)>>> ends {
        { "by itself", [&](JitsiMeetView*) { Q_EMIT service->page()->ended({}); } },
        { "twice",
            [&](JitsiMeetView*) {
                const QPointer<ScriptedPage> page = service->page();
                Q_EMIT page->ended({});
                Q_EMIT page->failed({ ConferenceErrorKind::PageCrashed }, {});
            } },
        { "failed",
            [&](JitsiMeetView*) { Q_EMIT service->page()->failed({ ConferenceErrorKind::ConnectionLost }, {}); } },
        { "left while connecting", [&](JitsiMeetView* view) { view->leave(); } },
        { "given up by the person",
            [&](JitsiMeetView*) {
                QTest::mouseClick(window.findChild<ConferenceCover*>()->findChild<QPushButton*>(), Qt::LeftButton);
            } },
        { "destroyed", [&](JitsiMeetView* view) { delete view; } },
        { "left and destroyed",
            [&](JitsiMeetView* view) {
                view->leave();
                delete view;
            } },
        { "replaced by another view's",
            [&](JitsiMeetView*) {
                JitsiMeetView other(service);
                other.join(options());
            } },
    };
    for (const auto& [name, end] : ends) {
        SCOPED_TRACE(name);
        delegate.events.clear();
        const QPointer<JitsiMeetView> view = add();
        view->join(options());
        EXPECT_TRUE(view->isInConference());
        end(view);
        settle();
        EXPECT_EQ(delegate.terminated(), 1);
        EXPECT_EQ(service->alive(), 0);
        EXPECT_FALSE(view && view->isInConference());
        delete view.data();
        settle();
        EXPECT_EQ(delegate.terminated(), 1);
        EXPECT_TRUE(QTest::qWaitFor([] { return !CameraArbiter::shared().isInterrupted(); }));
    }
}

TEST_F(ConferenceViews, ADelegateMayDeleteTheViewOrDieFirst)
{
    window.show();
    for (const QString& when : { QStringLiteral("willJoin"), QStringLiteral("joined"), QStringLiteral("terminated") }) {
        const QPointer<JitsiMeetView> view = add();
        delegate.during = [&](const QString& event) {
            if (event == when)
                delete view.data();
        };
        view->join(options());
        const QPointer<ScriptedPage> page = service->page();
        Q_EMIT page->willJoin({});
        settle();
        if (page)
            Q_EMIT page->joined({});
        settle();
        if (page)
            Q_EMIT page->ended({});
        settle();
        EXPECT_FALSE(view);
        EXPECT_FALSE(page);
    }
    delegate.during = nullptr;
    JitsiMeetView* const view = add();
    {
        RecordingConferenceDelegate brief;
        view->setDelegate(&brief);
        view->join(options());
    }
    EXPECT_EQ(view->delegate(), nullptr);
    Q_EMIT service->page()->joined({});
    Q_EMIT service->page()->ended({});
    settle();
    EXPECT_FALSE(view->isInConference());
}

TEST_F(ConferenceViews, LeaveNoPageBehindADelegatesDialog)
{
    window.show();
    int alive = -1;
    JitsiMeetView* view = add();
    delegate.during = [&](const QString& event) {
        if (event != QLatin1String("terminated"))
            return;
        alive = service->alive();
        QTest::qWait(1700); // the dialog stands longer than a client is given for its farewell
    };
    view->join(options());
    Q_EMIT service->page()->joined({});
    settle();
    view->leave();
    Q_EMIT service->page()->ended({});
    EXPECT_TRUE(QTest::qWaitFor([&] { return alive >= 0; }));
    EXPECT_EQ(alive, 0);

    alive = -1;
    delegate.events.clear();
    delegate.during = [&](const QString& event) {
        if (event != QLatin1String("joined"))
            return;
        view->leave();
        Q_EMIT service->page()->ended({});
        EXPECT_TRUE(QTest::qWaitFor([&] { return delegate.terminated() == 1; }));
        alive = service->alive();
    };
    view->join(options());
    Q_EMIT service->page()->joined({});
    settle();
    EXPECT_EQ(alive, 0) << "the person hung up while the dialog stood";
    EXPECT_EQ(delegate.terminated(), 1);
}

TEST_F(ConferenceViews, EndWithTheApplication)
{
    JitsiMeetView* const view = add(); // and nobody will delete it in time
    view->join(options());
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    EXPECT_EQ(service->alive(), 0);
    settle();
    EXPECT_EQ(delegate.terminated(), 1);
}

TEST_F(ConferenceViews, KeepToTheirOwnWindowAndTheirOwnMessage)
{
    window.show();
    JitsiMeetView* const joining = add(false);
    JitsiMeetView* const beside = add();
    QWidget elsewhere;
    JitsiMeetView other(service, &elsewhere);
    elsewhere.show();
    joining->join(options());
    EXPECT_EQ(place(), beside) << "though the other one was put on the screen later";
    joining->leave();
    settle();

    {
        QWidget neverShown;
        JitsiMeetView unseen(service, &neverShown);
        window.hide();
        elsewhere.hide();
        unseen.join(JitsiMeetConferenceOptions::fromBuilder([](JitsiMeetConferenceOptionsBuilder&) {}));
        settle();
    }
    window.show();
    EXPECT_FALSE(window.findChild<ConferenceCover*>()) << "what went wrong for a view that is gone";
}

TEST_F(ConferenceViews, TakeTheCameraOnlyForVideo)
{
    ASSERT_TRUE(QTest::qWaitFor([] { return !CameraArbiter::shared().isInterrupted(); }));
    JitsiMeetView* const view = add();
    view->join(options(QStringLiteral("room"), true));
    EXPECT_FALSE(CameraArbiter::shared().isInterrupted());
    Q_EMIT service->page()->wantsCamera();
    EXPECT_TRUE(CameraArbiter::shared().isInterrupted()) << "the person turned it on";
    view->join(options());
    settle();
    EXPECT_TRUE(CameraArbiter::shared().isInterrupted());
    view->leave();
    EXPECT_TRUE(QTest::qWaitFor([] { return !CameraArbiter::shared().isInterrupted(); }));
}

TEST_F(ConferenceViews, LetClicksThroughWhenThereIsNothingToSee)
{
    JitsiMeetView* const view = add();
    window.show();
    EXPECT_EQ(window.childAt(100, 100), nullptr);
    view->join(options());
    EXPECT_NE(window.childAt(100, 100), nullptr);
    Q_EMIT service->page()->failed(
        { ConferenceErrorKind::TokenRefused, QStringLiteral("connection.passwordRequired") }, {});
    settle();
    EXPECT_EQ(delegate.last["error"], "tokenRefused");
    EXPECT_EQ(delegate.last["origin"], "connection.passwordRequired");
    EXPECT_NE(window.childAt(100, 100), nullptr) << "the message stands";
    view->join(options());
    Q_EMIT service->page()->joined({});
    settle();
    EXPECT_FALSE(window.findChild<ConferenceCover*>() && window.findChild<ConferenceCover*>()->isVisible())
        << "another conference takes the message away";
    view->leave();
    EXPECT_EQ(service->page()->hangUps, 1);
    Q_EMIT service->page()->ended({});
    settle();
    EXPECT_EQ(window.childAt(100, 100), nullptr);
}

} // namespace
} // namespace kelvara::test
