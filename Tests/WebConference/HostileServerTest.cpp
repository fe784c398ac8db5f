#include "Tests/Support/HostileServer.h"
#include "Platform/Conference/JitsiMeetConferenceOptionsBuilder.h"
#include "Platform/Conference/JitsiMeetView.h"
#include "Platform/Conference/web/WebConferencePage.h"
#include "Tests/Support/BrowserLoop.h"
#include "Tests/Support/ScriptedConference.h"

#include <QApplication>
#include <QTest>
#include <QWebEngineView>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace kelvara::test {
namespace {

/// The device's own calls, but that they do not wait for long.
struct HastyConference final : ConferenceService
{
    ConferencePatience patience { 4s, 4s, 4s };
    std::unique_ptr<ConferencePage> makePage() override { return std::make_unique<WebConferencePage>(patience); }
};

class HostileConference : public testing::Test
{
protected:
    HostileConference()
    {
        window.resize(390, 844);
        view.resize(390, 844);
        view.setDelegate(&delegate);
        window.show();
    }
    void join()
    {
        view.join(JitsiMeetConferenceOptions::fromBuilder([&](JitsiMeetConferenceOptionsBuilder& builder) {
            builder.setServerURL(QUrl(server.url()));
            builder.setRoom(QStringLiteral("room"));
        }));
    }
    /// Whether only the test's own window is on the screen.
    [[nodiscard]] bool isAlone() const
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::none_of(windows.begin(), windows.end(), [&](const QWidget* other) {
            return other->isVisible() && other != &window && !other->testAttribute(Qt::WA_DontShowOnScreen);
        });
    }
    [[nodiscard]] QWebEngineView* page() const { return view.findChild<QWebEngineView*>(); }

    HostileServer server;
    std::shared_ptr<HastyConference> service = std::make_shared<HastyConference>();
    RecordingConferenceDelegate delegate;
    QWidget window;
    JitsiMeetView view { service, &window };
};

/// What is tried, one after the other, once the person has touched the page; only what throws was refused.
constexpr const char* kAttempts = R"JS(
    options.onload();
    await new Promise((done) => addEventListener('mousedown', done, { once: true }));
    const truthy = async (value) => { if (!(await value)) throw 'no'; };
    const stays = async (deed) => { deed(); await pause(150); throw 'still here'; };
    const loads = (tag, src) => new Promise((done, fail) => {
        const element = document.createElement(tag);
        element.onload = done;
        element.onerror = fail;
        element.src = src;
        document.body.append(element);
    });
    const frames = (src) => new Promise((done, fail) => {
        const frame = document.createElement('iframe');
        frame.allow = 'camera *; microphone *';
        addEventListener('message', (event) => { if (event.source === frame.contentWindow) done(); });
        frame.src = src;
        document.body.append(frame);
        setTimeout(() => fail('nothing came'), 500);
    });
    const link = (set) => { const a = document.createElement('a'); set(a); document.body.append(a); a.click(); };
    const speaks = "<script>parent.postMessage('here', '*')<\/script>";
    const attempts = {
        file: () => fetch('file:///etc/passwd', { mode: 'no-cors' }),
        resource: () => fetch('qrc:/kelvara/conference/conference.html', { mode: 'no-cors' }),
        resourceScript: () => loads('script', 'qrc:/kelvara/conference/conference.js'),
        otherFrame: () => frames('OTHER/frame.html'),
        redirectedFrame: () => frames('/redirected'),
        dataFrame: () => frames('data:text/html,' + speaks),
        window: () => new Promise((done, fail) => { // there is none, though the page is given one that is closed
            addEventListener('message', (event) => { if (event.data === 'window') done(); });
            window.open('/window.html');
            setTimeout(() => fail('nothing came'), 500);
        }),
        blank: () => stays(() => link((a) => { a.href = '/frame.html'; a.target = '_blank'; })),
        leaving: () => stays(() => { location.href = 'OTHER/frame.html'; }),
        leavingForFile: () => stays(() => { location.href = 'file:///etc/passwd'; }),
        reloading: () => stays(() => location.reload()),
        download: () => stays(() => link((a) => { a.href = '/frame.html'; a.download = 'x'; })),
        confirm: () => truthy(confirm('x')),
        prompt: () => truthy(prompt('x')),
        location: () => new Promise((done, fail) => navigator.geolocation.getCurrentPosition(done, fail)),
        notification: async () => truthy((await Notification.requestPermission()) === 'granted'),
        screen: () => navigator.mediaDevices.getDisplayMedia({ video: true }),
        reading: () => navigator.clipboard.readText(),
        writing: () => navigator.clipboard.writeText('x'),
        files: () => showOpenFilePicker(),
        fullScreen: () => document.documentElement.requestFullscreen(),
        midi: () => navigator.requestMIDIAccess({ sysex: true }),
        channel: () => truthy(typeof qt !== 'undefined' || typeof QWebChannel !== 'undefined'),
    };
    const told = {};
    for (const [name, attempt] of Object.entries(attempts))
        try { await attempt(); told[name] = 'allowed'; } catch (error) { told[name] = 'refused'; }
    alert('x');
    tell('videoConferenceJoined', { roomName: 'room' });
    fetch('/told', { method: 'POST', body: JSON.stringify(told) });)JS";

TEST_F(HostileConference, GetsNothingOfTheDevice)
{
    service->patience = { 30s, 60s, 60s };
    const QByteArray other = server.url("127.0.0.1").toUtf8();
    server.answers["/frame.html"] = { "<script>parent.postMessage('here', '*')</script>", "text/html" };
    server.answers["/window.html"] = { "<script>opener.postMessage('window', '*')</script>", "text/html" };
    server.answers["/redirected"] = { "", "text/html", 302, { "Location", other + "/frame.html" } };
    server.setDeed(QByteArray(kAttempts).replace("OTHER", other));
    join();
    ASSERT_TRUE(runUntil([&] { return delegate.events.contains("willJoin") && page() && page()->isVisible(); }));
    // Some things are to be had only by a person's touch.
    EXPECT_TRUE(runUntil(
        [&] {
            QTest::mouseClick(page()->focusProxy(), Qt::LeftButton, {}, QPoint(100, 100));
            EXPECT_TRUE(isAlone());
            return !server.told.isEmpty() || delegate.terminated() > 0;
        },
        60000));
    EXPECT_EQ(server.told.size(), 23);
    for (auto attempt = server.told.begin(); attempt != server.told.end(); ++attempt)
        EXPECT_EQ(attempt.value().toString().toStdString(), "refused") << attempt.key().toStdString();
    EXPECT_TRUE(runUntil([&] { return delegate.events.contains("joined"); })) << "and the call goes on";
    EXPECT_EQ(page()->url(), QUrl(server.url() + "/"));
}

TEST_F(HostileConference, OpensNoDialogsWhenThePersonTouchesAField)
{
    service->patience = { 30s, 60s, 60s };
    server.setDeed(R"JS(
        options.onload();
        document.body.innerHTML = '<input type="color"><input type="file">';
        for (const field of [...document.body.children].reverse()) {
            field.style = 'position: fixed; left: 0; top: 0; width: 390px; height: 844px';
            await new Promise((done) => field.addEventListener('click', done));
            await pause(300);
            field.remove();
        }
        tell('videoConferenceLeft');)JS");
    join();
    EXPECT_TRUE(runUntil([&] {
        if (page() && page()->isVisible() && page()->focusProxy())
            QTest::mouseClick(page()->focusProxy(), Qt::LeftButton, {}, QPoint(100, 100));
        EXPECT_TRUE(isAlone());
        return delegate.terminated() > 0;
    }));
}

struct Deed
{
    const char* name;
    HostileServer::Answer script;
    QByteArray deed; ///< Instead of the script.
    int joined = 0;
    const char* error = "";
};
void PrintTo(const Deed& deed, std::ostream* out)
{
    *out << deed.name;
}
class HostileDeed : public HostileConference, public testing::WithParamInterface<Deed>
{ };

TEST_P(HostileDeed, EndsTheCallOnceAndNothingElse)
{
    const Deed& deed = GetParam();
    deed.deed.isEmpty() ? server.setScript(deed.script) : server.setDeed(deed.deed);
    join();
    qint64 longest = 0;
    QElapsedTimer since;
    since.start();
    EXPECT_TRUE(runUntil(
        [&] {
            longest = std::max(longest, since.restart());
            EXPECT_TRUE(isAlone());
            return delegate.terminated() > 0;
        },
        60000));
    runUntil([] { return false; }, 100);
    EXPECT_EQ(delegate.terminated(), 1);
    EXPECT_EQ(delegate.events.count("joined"), deed.joined);
    EXPECT_LE(delegate.events.count("willJoin"), 1);
    EXPECT_EQ(delegate.last["error"].toString(), deed.error);
    EXPECT_LT(longest, 3000) << "the application is never held up";
    EXPECT_EQ(page(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Rows, HostileDeed,
    testing::Values(Deed { "loginPage", { "<html>log in</html>", "text/html" }, {}, 0, "noConferenceServer" },
        Deed { "password", { "", "text/html", 401, { "WWW-Authenticate", "Basic realm=\"x\"" } }, {}, 0,
            "noConferenceServer" },
        Deed {
            "otherThing", { "window.JitsiMeetExternalAPI = function () { return 7; };" }, {}, 0, "noConferenceServer" },
        Deed { "loop", {}, "for (;;);", 0, "noAnswer" },
        Deed { "loopInACall", {}, "tell('videoConferenceJoined'); await pause(200); for (;;);", 1, "noAnswer" },
        Deed { "floodOfEvents", {},
            "for (let i = 0; i < 50000; ++i) tell('videoConferenceJoined', { i });"
            "await pause(1500); tell('videoConferenceLeft');",
            1 },
        Deed { "endlessEvents", {}, "for (;;) tell('videoConferenceJoined', {});", 1, "noAnswer" },
        Deed { "pictureInAnEvent", {},
            "const picture = 'x'.repeat(1 << 20);"
            "tell('videoConferenceJoined', { roomName: 'room', avatarURL: picture });"
            "tell('videoConferenceLeft', { roomName: 'room', avatarURL: picture });",
            1 },
        Deed { "noJson", {},
            "const ring = {}; ring.ring = ring;"
            "tell('videoConferenceJoined', ring); tell('errorOccurred', ring); tell('videoConferenceLeft', ring);",
            1 },
        Deed { "eventsOfOurs", {},
            "for (const detail of ['', '{', '[]', 'null', '{\"event\":{}}', '['.repeat(50000), null,"
            "5, {}, () => 1]) for (const name of ['kelvara-report', 'kelvara-invited'])"
            "dispatchEvent(new CustomEvent(name, { detail })); dispatchEvent(new Event('kelvara-report'));"
            "await pause(1500); tell('videoConferenceLeft');" },
        Deed { "afterTheEnd", {},
            "tell('videoConferenceLeft'); tell('videoConferenceJoined');"
            "tell('errorOccurred', { error: { isFatal: true, name: 'x' } });" }),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace kelvara::test
