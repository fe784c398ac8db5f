#include "Tests/LocalConference/ConferencePage.h"

#include <gtest/gtest.h>

namespace kelvara::test {

namespace {

const QJsonObject audioOnly { { QStringLiteral("configOverwrite"),
    QJsonObject { { QStringLiteral("startAudioOnly"), true } } } };

QJsonObject with(const char* name, const QJsonValue& value)
{
    QJsonObject options = audioOnly;
    options[QLatin1String(name)] = value;
    return options;
}

QStringList logged;

void log(QtMsgType, const QMessageLogContext&, const QString& message)
{
    logged << message;
}

} // namespace

TEST(LocalConferenceTrouble, RefusesTokensAndKeepsThemToItself)
{
    ConferenceStage stage;
    const QString secret = QStringLiteral("geheim-anahtar-42");
    QStringList asked;
    stage.server.setAcceptsToken([&](const QString& token) {
        asked << token;
        return token == secret;
    });
    const auto before = qInstallMessageHandler(&log);
    QStringList consoles;
    const struct
    {
        QString token;
        bool accepted;
    } rows[] = { { {}, false }, { secret + QLatin1Char('x'), false }, { secret, true } };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.token.toStdString());
        ConferencePage page(stage.profile);
        page.embed(stage.server.url(), QStringLiteral("oda"), with("jwt", row.token));
        EXPECT_TRUE(page.waitFor(row.accepted ? joinedEvent : errorEvent));
        EXPECT_EQ(asked.last(), row.token);
        EXPECT_EQ(page.errorName(), row.accepted ? QString() : QStringLiteral("connection.passwordRequired"));
        if (row.accepted) {
            // Whatever a browser complains of names the page's address. A dead server makes it complain, and so does
            // this.
            page.evaluate(QStringLiteral("api.getIFrame().contentWindow.eval('console.error(location.href)')"));
            stage.server.close();
            EXPECT_TRUE(page.waitFor(errorEvent));
        }
        consoles += page.otherMessages;
    }
    qInstallMessageHandler(before);
    EXPECT_EQ(stage.server.visits().size(), 1);
    EXPECT_TRUE(consoles.join(QLatin1Char('\n')).contains(QLatin1String("/oda"))); // the browser did complain
    EXPECT_FALSE((logged + consoles).join(QLatin1Char('\n')).contains(secret));
}

TEST(LocalConferenceTrouble, HasAnOutcomeForEveryAddress)
{
    const struct
    {
        const char* name;
        QString room;
        QJsonObject options;
        QString event;
        QString error;
    } rows[] = {
        { "token of 1 MB", QStringLiteral("oda"), with("tokenLength", 1'000'000), joinedEvent, {} },
        { "longer than a browser takes", QStringLiteral("oda"), with("tokenLength", 3'000'000), errorEvent,
            QStringLiteral("connection.otherError") },
        { "TLS", QStringLiteral("oda"), with("noSSL", false), errorEvent, QStringLiteral("connection.otherError") },
        { "no room", QString(), audioOnly, errorEvent, QStringLiteral("connection.otherError") },
    };
    ConferenceStage stage;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ConferencePage page(stage.profile);
        page.embed(stage.server.url(), row.room, row.options);
        EXPECT_TRUE(page.waitFor(row.event));
        EXPECT_EQ(page.errorName(), row.error);
    }
    ASSERT_EQ(stage.server.visits().size(), 1);
    EXPECT_EQ(stage.server.visits().first().token.size(), 1'000'000);

    stage.server.setHasEmbeddingScript(false);
    ConferencePage page(stage.profile);
    page.embed(stage.server.url(), QStringLiteral("oda"));
    EXPECT_TRUE(page.waitFor(QStringLiteral("absent")));
}

TEST(LocalConferenceTrouble, FallsSilentWhenToldTo)
{
    using Answers = LocalConference::Answers;
    ConferenceStage stage;
    ConferencePage caller(stage.profile);
    caller.embed(stage.server.url(), QStringLiteral("oda"), audioOnly);
    ASSERT_TRUE(caller.waitFor(joinedEvent));

    stage.server.setAnswers(Answers::OnlyTheScript);
    ConferencePage late(stage.profile);
    late.embed(stage.server.url(), QStringLiteral("oda"), audioOnly);
    EXPECT_TRUE(waitUntil([&] { return late.evaluate(QStringLiteral("Boolean(window.api)")).toBool(); }, 20000));
    // The open call loses contact; the new one waits without end.
    ASSERT_TRUE(caller.waitFor(errorEvent));
    EXPECT_EQ(caller.errorName(), QStringLiteral("connection.droppedError"));
    EXPECT_TRUE(waitUntil([&] { return stage.heard.size() == 2; }, 20000));
    EXPECT_TRUE(late.events.isEmpty());

    stage.server.setAnswers(Answers::Nothing);
    ConferencePage never(stage.profile);
    never.embed(stage.server.url(), QStringLiteral("oda"), audioOnly);
    waitOut(1000);
    EXPECT_TRUE(never.events.isEmpty()); // not even that the script is absent
    EXPECT_EQ(stage.server.visits().size(), 1);

    // What waits does not hold up the end, and the server comes back to life whole.
    stage.server.close();
    EXPECT_TRUE(stage.server.url().isEmpty());
    EXPECT_TRUE(never.waitFor(QStringLiteral("absent")));
    stage.server.setAnswers(Answers::Everything);
    ASSERT_TRUE(stage.server.listen());
    ConferencePage again(stage.profile);
    again.embed(stage.server.url(), QStringLiteral("oda"), audioOnly);
    EXPECT_TRUE(again.waitFor(joinedEvent));
}

} // namespace kelvara::test
