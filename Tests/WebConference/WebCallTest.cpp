#include "Platform/Conference/ConferenceCover.h"
#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/local/LocalConference.h"
#include "Platform/Foundation/CameraArbiter.h"
#include "Tests/Support/BrowserLoop.h"
#include "Tests/Support/KycHarness.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QPushButton>
#include <QSslKey>
#include <QSslServer>
#include <QTemporaryDir>
#include <QWebEngineView>

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

/// A phone with the device's own calls, at its video-call step, and a conference server in this process.
class WebCall : public testing::Test
{
protected:
    WebCall()
    {
        EXPECT_TRUE(server.listen());
        open();
    }
    void open()
    {
        Device device = Device::phone();
        device.conference = ConferenceService::native();
        stage = std::make_unique<Stage>(device);
        stage->setSteps({ ViewType::jitsi });
        stage->view->setDidConferenceTerminated([this](const std::optional<QVariantMap>& data) {
            ++terminated;
            last = data.value_or(QVariantMap());
        });
    }
    void call(const QString& room = "room", const QString& token = "secret")
    {
        stage->view->setJitsiConference(server.url().toString(), room, token);
    }
    bool join(const QString& room = "room", const QString& token = "secret")
    {
        call(room, token);
        return runUntil([&] { return stage->view->inJitsi(); });
    }
    [[nodiscard]] bool ends()
    {
        const int before = terminated;
        return runUntil([&] { return terminated == before + 1; });
    }
    [[nodiscard]] QWebEngineView* page() const { return stage->view->findChild<QWebEngineView*>(); }
    [[nodiscard]] QJsonValue evaluate(const QString& script) const
    {
        std::optional<QVariant> result;
        page()->page()->runJavaScript(script, [&](const QVariant& value) { result = value; });
        EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
        return QJsonValue::fromVariant(result.value_or(QVariant()));
    }
    [[nodiscard]] QString message() const
    {
        const auto* cover = stage->view->findChild<ConferenceCover*>();
        return cover ? cover->accessibleName() : QString();
    }

    LocalConference server;
    std::unique_ptr<Stage> stage;
    int terminated = 0;
    QVariantMap last;
};

TEST_F(WebCall, IsJoinedSeenAndLeft)
{
    ASSERT_TRUE(join("şube/oda #1 \"a\""));
    ASSERT_EQ(server.visits().size(), 1);
    const auto visit = server.visits().back();
    EXPECT_EQ(visit.room, QString::fromUtf8("şube/oda #1 \"a\""));
    EXPECT_EQ(visit.token, "secret");
    EXPECT_TRUE(visit.hasVideo);
    EXPECT_TRUE(visit.hasAudio);
    EXPECT_FALSE(stage->view->isScanning()) << "the call has the camera";

    // Every setting reached the page in its order, and the client what it means there.
    const QJsonArray settings
        = QJsonDocument::fromJson(evaluate("JSON.stringify(kelvaraSettings)").toString().toUtf8()).array();
    ASSERT_EQ(settings.size(), 4 + 21);
    EXPECT_EQ(settings[0], QJsonArray({ "audioOnly", false, false }));
    EXPECT_EQ(settings[3], QJsonArray({ "welcomePageEnabled", false, false }));
    EXPECT_EQ(settings[4], QJsonArray({ "add-people.enabled", false, true }));
    EXPECT_EQ(settings[13], QJsonArray({ "meeting-name.enabled", false, true }));
    EXPECT_EQ(settings[19], QJsonArray({ "meeting-name.enabled", false, true }));
    EXPECT_EQ(settings[22], QJsonArray({ "resolution", false, true }));
    EXPECT_EQ(settings[24], QJsonArray({ "tile-view.enabled", false, true }));
    EXPECT_EQ(visit.config["toolbarButtons"], QJsonArray());
    EXPECT_EQ(visit.config["disableTileView"], true);
    EXPECT_EQ(visit.config["hideConferenceSubject"], true);
    EXPECT_EQ(visit.config["prejoinPageEnabled"], false);
    EXPECT_EQ(visit.config["startAudioOnly"], false);

    // The person sees a moving picture inside the view.
    const QImage first = stage->view->grab().toImage();
    EXPECT_TRUE(runUntil([&] { return stage->view->grab().toImage() != first; }));

    server.hangUp();
    ASSERT_TRUE(ends());
    EXPECT_FALSE(last.contains("error"));
    EXPECT_EQ(last.value("roomName"), QString::fromUtf8("şube/oda #1 \"a\""));
    EXPECT_FALSE(last.value("url").toString().contains("secret"));
    EXPECT_FALSE(stage->view->inJitsi());
    EXPECT_TRUE(runUntil([&] { return page() == nullptr; })) << "no old page lives on";
    EXPECT_TRUE(runUntil([&] { return stage->view->isScanning(); }));
    EXPECT_EQ(stage->view->childAt(stage->d().closeButton->geometry().center()), stage->d().closeButton);
    EXPECT_EQ(terminated, 1);
}

TEST_F(WebCall, EndsInWordsWhenTheServerMakesTrouble)
{
    server.setAcceptsToken([](const QString& token) { return token == "right"; });
    call("room", "wrong");
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "tokenRefused");
    EXPECT_EQ(message(), QString::fromUtf8("Görüşmeye katılma izniniz doğrulanamadı."));
    EXPECT_TRUE(server.visits().isEmpty());

    ASSERT_TRUE(join("room", "right"));
    EXPECT_EQ(message(), QString()) << "a new call takes the message away";
    server.dropCall();
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "connectionLost");
    EXPECT_EQ(message(), QString::fromUtf8("Görüşme bağlantısı koptu."));

    ASSERT_TRUE(join("room", "right"));
    server.close();
    ASSERT_TRUE(ends()) << "the server died";
    EXPECT_EQ(last["error"], "connectionLost");

    stage->view->setJitsiConference("http://localhost:1", "room", {});
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "serverUnreachable");

    ASSERT_TRUE(server.listen());
    server.setHasEmbeddingScript(false);
    call();
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "noConferenceServer");
    EXPECT_FALSE(message().isEmpty());
    EXPECT_EQ(terminated, 5);
}

TEST_F(WebCall, ATokenOfAMegabyteHasAnEnd)
{
    call("room", QString(1 << 20, 'x'));
    ASSERT_TRUE(runUntil([&] { return terminated == 1 || stage->view->inJitsi(); }, 60000));
    if (terminated)
        EXPECT_FALSE(message().isEmpty());
    else
        EXPECT_EQ(server.visits().back().token.size(), 1 << 20);
}

/// A certificate that nobody vouches for.
QSslConfiguration untrustedConfiguration(const QString& folder)
{
    QProcess openssl;
    openssl.start("openssl",
        { "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", folder + "/key.pem", "-out", folder + "/cert.pem",
            "-days", "2", "-subj", "/CN=localhost" });
    openssl.waitForFinished();
    QSslConfiguration configuration;
    configuration.setLocalCertificate(QSslCertificate::fromPath(folder + "/cert.pem").value(0));
    QFile key(folder + "/key.pem");
    if (key.open(QIODevice::ReadOnly))
        configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    return configuration;
}

TEST_F(WebCall, NeverOverrulesACertificate)
{
    QTemporaryDir folder;
    QSslServer listener;
    listener.setSslConfiguration(untrustedConfiguration(folder.path()));
    ASSERT_TRUE(listener.listen(QHostAddress::LocalHost));
    stage->view->setJitsiConference(
        QStringLiteral("https://localhost:%1").arg(listener.serverPort()), "room", "secret");
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "serverUntrusted");
    EXPECT_EQ(
        message(), QString::fromUtf8("Görüşme sunucusunun kimliği doğrulanamadı. Güvenliğiniz için bağlanılmadı."));
}

TEST_F(WebCall, SurvivesItsRenderer)
{
    ASSERT_TRUE(join());
    page()->page()->load(QUrl("chrome://crash")); // a page may not, but we may
    ASSERT_TRUE(ends());
    EXPECT_EQ(last["error"], "pageCrashed");
    EXPECT_FALSE(message().isEmpty());
    EXPECT_TRUE(join()) << "another call is possible";
}

TEST_F(WebCall, FiftyInARow)
{
    const int calls = qEnvironmentVariableIsSet("KELVARA_LIGHT_GATES") ? 10 : 50;
    int ended = 0;
    for (int i = 0; i < calls; ++i) {
        SCOPED_TRACE(i);
        const int before = terminated;
        if (i % 5 == 4) {
            // Destroyed at ever later moments of joining.
            call();
            runUntil([] { return false; }, i * 8);
            stage.reset();
            EXPECT_EQ(terminated, before) << "a view that goes calls nobody back";
            open();
            continue;
        }
        ASSERT_TRUE(join());
        i % 2 ? server.hangUp() : stage->d().jitsiMeetView->leave();
        ASSERT_TRUE(runUntil([&] { return terminated > before; }));
        EXPECT_EQ(terminated, before + 1);
        ++ended;
    }
    runUntil([] { return false; }, 500);
    EXPECT_EQ(terminated, ended) << "exactly one each";
    EXPECT_EQ(stage->view->findChildren<QWebEngineView*>().size(), 0);
    EXPECT_FALSE(CameraArbiter::shared().isInterrupted());
}

} // namespace
} // namespace kelvara::test
