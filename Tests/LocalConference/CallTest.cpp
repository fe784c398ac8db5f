#include "Tests/LocalConference/ConferencePage.h"

#include <gtest/gtest.h>

#include <QJsonArray>

namespace kelvara::test {

namespace {

const QString closeEvent = QStringLiteral("readyToClose");
const QStringList joinedCourse { joinedEvent, QStringLiteral("participantJoined") };
const QStringList leftCourse = joinedCourse + QStringList { QStringLiteral("videoConferenceLeft"), closeEvent };
const QStringList lostCourse = joinedCourse + QStringList { errorEvent };

QJsonObject config(const QJsonObject& values)
{
    return { { QStringLiteral("configOverwrite"), values } };
}

// One way for a call to end, and what the embedding page hears of it.
struct Ending
{
    const char* name;
    std::function<void(ConferenceStage&, ConferencePage&)> end;
    QStringList course;
};

} // namespace

TEST(LocalConferenceCall, EndsInEveryWayWithItsOwnEvents)
{
    ConferenceStage stage;
    const Ending endings[] = {
        { "command", [](auto&, auto& page) { page.evaluate(QStringLiteral("api.executeCommand('hangup')")); },
            leftCourse },
        { "button", [](auto&, auto& page) { page.evaluate(QStringLiteral("client.getElementById('hangup').click()")); },
            leftCourse },
        { "representative", [](auto& s, auto&) { s.server.hangUp(); }, leftCourse },
        { "lost line", [](auto& s, auto&) { s.server.dropCall(); }, lostCourse },
        { "page taken away", [](auto&, auto& page) { page.evaluate(QStringLiteral("api.dispose()")); }, joinedCourse },
        { "dead server", [](auto& s, auto&) { s.server.close(); }, lostCourse },
    };
    for (const Ending& ending : endings) {
        SCOPED_TRACE(ending.name);
        stage.heard.clear();
        ConferencePage page(stage.profile);
        page.embed(stage.server.url(), QStringLiteral("oda"));
        ASSERT_TRUE(page.waitFor(QStringLiteral("participantJoined")));
        EXPECT_EQ(stage.heard, QStringList { QStringLiteral("joined oda") });
        EXPECT_TRUE(stage.server.visits().last().isOpen);
        ending.end(stage, page);
        ASSERT_TRUE(page.waitFor(ending.course.last()));
        ASSERT_TRUE(waitUntil([&] { return stage.heard.size() > 1; }, 30000));
        waitOut(300);
        EXPECT_EQ(page.events, ending.course);
        EXPECT_EQ(stage.heard, QStringList({ QStringLiteral("joined oda"), QStringLiteral("left oda") }));
        EXPECT_FALSE(stage.server.visits().last().isOpen);
        if (ending.course == lostCourse) {
            EXPECT_EQ(page.errorName(), QStringLiteral("connection.droppedError"));
            EXPECT_TRUE(page.dataOf(errorEvent)[QLatin1String("error")][QLatin1String("isFatal")].toBool());
        }
    }
    EXPECT_EQ(stage.server.visits().size(), qsizetype(std::size(endings)));
}

TEST(LocalConferenceCall, GivesRoomTokenAndOptionsAsTheHostMeantThem)
{
    ConferenceStage stage;
    const QString rooms[] = { QStringLiteral("düz"), QStringLiteral("banka/görüşme 7"), QStringLiteral("ığüşöçİĞ"),
        QStringLiteral("a#b?c&d=e\"f'g<h>+i"), QStringLiteral("a;b:c@d,e{f}|g^h") };
    const QString token = QStringLiteral("ey.J-_~+/=&#ş 1");
    const QJsonObject wanted { { QStringLiteral("startAudioOnly"), true },
        { QStringLiteral("toolbarButtons"), QJsonArray() },
        { QStringLiteral("subject"), QStringLiteral("Ad & \"Soyad\" #1 = %41") },
        { QStringLiteral("nested"), QJsonObject { { QStringLiteral("a.b"), QJsonArray { 1, QJsonValue(), true } } } },
        { QStringLiteral("__proto__"), QStringLiteral("x") } };
    const QJsonObject look { { QStringLiteral("SHOW_BRAND"), false } };
    for (const QString& room : rooms) {
        SCOPED_TRACE(room.toStdString());
        ConferencePage page(stage.profile);
        QJsonObject options = config(wanted);
        options[QLatin1String("interfaceConfigOverwrite")] = look;
        options[QLatin1String("jwt")] = token;
        options[QLatin1String("userInfo")]
            = QJsonObject { { QStringLiteral("displayName"), QStringLiteral("Çağ Öz") } };
        page.embed(stage.server.url(), room, options);
        ASSERT_TRUE(page.waitFor(joinedEvent)) << page.errorName().toStdString();
        EXPECT_EQ(page.dataOf(joinedEvent)[QLatin1String("roomName")].toString(), room);
        EXPECT_EQ(page.dataOf(joinedEvent)[QLatin1String("displayName")].toString(), QStringLiteral("Çağ Öz"));
        const LocalConference::Visit visit = stage.server.visits().last();
        EXPECT_EQ(visit.room, room);
        EXPECT_EQ(visit.token, token);
        EXPECT_EQ(visit.displayName, QStringLiteral("Çağ Öz"));
        EXPECT_EQ(visit.config, wanted);
        EXPECT_EQ(visit.interfaceConfig, look);
        EXPECT_TRUE(page.evaluate(QStringLiteral("client.querySelector('.toolbar').hidden")).toBool());
    }
}

TEST(LocalConferenceCall, ShowsTheRepresentativesLivingPicture)
{
    ConferenceStage stage;
    ConferencePage page(stage.profile);
    page.embed(stage.server.url(), QStringLiteral("oda"));
    ASSERT_TRUE(page.waitFor(joinedEvent));
    // The picture as it was received, small: its sum of brightness, and how many pixels differ from the one before.
    ASSERT_TRUE(page.evaluate(QStringLiteral(R"((() => {
            const video = client.getElementById('remote');
            const canvas = document.createElement('canvas');
            canvas.width = 72;
            canvas.height = 156;
            const g = canvas.getContext('2d');
            let before = null;
            window.look = () => {
                g.drawImage(video, 0, 0, canvas.width, canvas.height);
                const now = g.getImageData(0, 0, canvas.width, canvas.height).data;
                let changed = 0, differing = 0;
                for (let at = 0; at < now.length; at += 4) {
                    if (before && Math.abs(now[at] - before[at]) > 8)
                        ++changed;
                    if (Math.abs(now[at] - now[at % 288]) > 24)
                        ++differing;
                }
                before = now;
                return [changed, differing];
            };
            look();
            return true;
        })())"))
                    .toBool());
    int changed = 0;
    ASSERT_TRUE(waitUntil(
        [&] {
            const QVariantList seen = page.evaluate(QStringLiteral("look()")).toList();
            changed += seen.value(0).toInt();
            return changed > 60 && seen.value(1).toInt() > 3000;
        },
        30000));
    // Silence is no life: the sound must be received as well.
    EXPECT_EQ(
        page.evaluate(QStringLiteral("client.getElementById('remote').srcObject.getAudioTracks().length")).toInt(), 1);
}

TEST(LocalConferenceCall, GoesOnWithWhatThePersonSends)
{
    struct Row
    {
        const char* name;
        ConferencePage::Permission permission;
        QJsonObject config;
        bool video;
        bool audio;
    };
    using enum ConferencePage::Permission;
    const Row rows[] = {
        { "all", Granted, {}, true, true },
        { "refused", Refused, {}, false, false },
        { "audio only", Granted, { { QStringLiteral("startAudioOnly"), true } }, false, true },
        { "camera off", Granted, { { QStringLiteral("startWithVideoMuted"), true } }, false, true },
    };
    ConferenceStage stage;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ConferencePage page(stage.profile, row.permission);
        page.embed(stage.server.url(), QStringLiteral("oda"), config(row.config));
        ASSERT_TRUE(page.waitFor(joinedEvent)) << page.errorName().toStdString();
        EXPECT_EQ(stage.server.visits().last().hasVideo, row.video);
        EXPECT_EQ(stage.server.visits().last().hasAudio, row.audio);
    }

    // Muting and unmuting, by command and by button.
    ConferencePage page(stage.profile);
    page.embed(stage.server.url(), QStringLiteral("oda"), config({ { QStringLiteral("startWithVideoMuted"), true } }));
    ASSERT_TRUE(page.waitFor(joinedEvent));
    const auto visit = [&] { return stage.server.visits().last(); };
    page.evaluate(QStringLiteral("api.executeCommand('toggleVideo')"));
    ASSERT_TRUE(page.waitFor(QStringLiteral("videoMuteStatusChanged")));
    EXPECT_FALSE(page.dataOf(QStringLiteral("videoMuteStatusChanged"))[QLatin1String("muted")].toBool(true));
    EXPECT_TRUE(waitUntil([&] { return visit().hasVideo; }, 10000));
    page.evaluate(QStringLiteral("client.getElementById('toggleAudio').click()"));
    ASSERT_TRUE(page.waitFor(QStringLiteral("audioMuteStatusChanged")));
    EXPECT_TRUE(page.dataOf(QStringLiteral("audioMuteStatusChanged"))[QLatin1String("muted")].toBool());
    EXPECT_TRUE(waitUntil([&] { return !visit().hasAudio; }, 10000));
}

TEST(LocalConferenceCall, BelievesNobodyButItsOtherHalf)
{
    ConferenceStage stage;
    ConferencePage page(stage.profile);
    page.embed(stage.server.url(), QStringLiteral("oda"), config({ { QStringLiteral("startAudioOnly"), true } }));
    ASSERT_TRUE(page.waitFor(QStringLiteral("participantJoined")));
    // From the embedding page to itself as the client would speak, and from a third page to the client as the host's.
    page.evaluate(QStringLiteral(R"((() => {
            const mark = 'kelvara-local-conference';
            postMessage({ mark, kind: 'event', name: 'readyToClose', data: {} }, '*');
            const third = document.createElement('iframe');
            third.srcdoc = `<script>
                parent.frames[0].postMessage({ mark: '${mark}', kind: 'command', name: 'hangup', values: [] }, '*');
                parent.postMessage({ mark: '${mark}', kind: 'event', name: 'readyToClose', data: {} }, '*');
                parent.postMessage('forged', '*');
            </` + `script>`;
            window.forged = 0;
            addEventListener('message', event => { window.forged += event.data === 'forged' ? 1 : 0; });
            document.body.append(third);
            return true;
        })())"));
    ASSERT_TRUE(waitUntil([&] { return page.evaluate(QStringLiteral("window.forged")).toInt() == 1; }, 10000));
    waitOut(300);
    EXPECT_EQ(page.events, joinedCourse);
    page.evaluate(QStringLiteral("api.executeCommand('hangup')")); // the client did listen
    EXPECT_TRUE(page.waitFor(closeEvent));
}

} // namespace kelvara::test
