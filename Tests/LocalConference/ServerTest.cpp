#include "Platform/Conference/local/LocalCalls.h"
#include "Platform/Conference/local/LocalRoutes.h"
#include "Tests/LocalConference/ConferencePage.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QNetworkInterface>
#include <QTcpServer>
#include <QTcpSocket>

namespace kelvara::test {

namespace {

using State = LocalCalls::State;

struct Rooms
{
    QStringList heard;
    LocalCalls calls { [this](const QString& room) { heard << QStringLiteral("joined ") + room; },
        [this](const QString& room) { heard << QStringLiteral("left ") + room; } };

    QString enter(const QString& room)
    {
        LocalConference::Visit visit;
        visit.room = room;
        return calls.enter(visit);
    }
};

} // namespace

TEST(LocalConferenceServer, CountsThoseWhoJoinedInTheirOrderOnceEach)
{
    Rooms rooms;
    const QString first = rooms.enter(QStringLiteral("a"));
    const QString second = rooms.enter(QStringLiteral("b"));
    const QString absent = rooms.enter(QStringLiteral("c"));
    EXPECT_EQ(rooms.calls.join(second, { true, false }), State::Open);
    EXPECT_EQ(rooms.calls.join(first, {}), State::Open);
    EXPECT_EQ(rooms.calls.join(first, { true, true }), State::Open);
    rooms.calls.leave(second);
    rooms.calls.leave(second);
    rooms.calls.leave(absent);
    rooms.calls.endAll(State::Dropped);
    EXPECT_EQ(rooms.calls.contact(first, { true, true }), State::Dropped);
    EXPECT_EQ(rooms.calls.join(absent, {}), State::HungUp); // too late
    EXPECT_EQ(rooms.calls.contact(QStringLiteral("forged"), {}), State::Dropped);
    EXPECT_EQ(rooms.heard.join(QLatin1Char(' ')), QStringLiteral("joined b joined a left b left a"));
    const auto visits = rooms.calls.visits();
    ASSERT_EQ(visits.size(), 2);
    EXPECT_EQ(visits[0].room + visits[1].room, QStringLiteral("ba"));
    EXPECT_FALSE(visits[1].isOpen || visits[1].hasVideo || visits[1].hasAudio);
}

TEST(LocalConferenceServer, GivesUpOnlyThoseThatStaySilent)
{
    Rooms rooms;
    const QString lively = rooms.enter(QStringLiteral("a"));
    const QString silent = rooms.enter(QStringLiteral("b"));
    (void)rooms.calls.join(lively, {});
    (void)rooms.calls.join(silent, {});
    for (int beat = 0; beat < 3; ++beat) {
        rooms.calls.beat(2);
        EXPECT_EQ(rooms.calls.contact(lively, {}), State::Open);
        EXPECT_EQ(rooms.heard.contains(QStringLiteral("left b")), beat == 2) << beat;
    }
    EXPECT_EQ(rooms.calls.contact(silent, {}), State::Dropped); // comes back too late
}

TEST(LocalConferenceServer, AnswersEachPathWithItsFile)
{
    Rooms rooms;
    LocalRoutes routes(rooms.calls);
    const struct
    {
        const char* path;
        int status;
        const char* type;
    } rows[] = {
        { "/external_api.js", 200, "text/javascript; charset=utf-8" },
        { "/.local/client.js", 200, "text/javascript; charset=utf-8" },
        { "/.local/client.css", 200, "text/css; charset=utf-8" },
        { "/oda", 200, "text/html; charset=utf-8" },
        { "/banka/oda.js", 200, "text/html; charset=utf-8" },
        { "/", 404, "text/plain; charset=utf-8" },
        { "/favicon.ico", 404, "text/plain; charset=utf-8" },
        { "/.local/none.js", 404, "text/plain; charset=utf-8" },
        { "/.local/../external_api.js", 404, "text/plain; charset=utf-8" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        const auto reply = routes.reply(false, QString::fromUtf8(row.path), {});
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->status, row.status);
        EXPECT_EQ(reply->type, row.type);
    }
    // What pages say may be anything.
    for (const char* said : { "", "[]", "{", R"({"call":7})", R"({"call":{"a":[]},"video":"yes"})" }) {
        SCOPED_TRACE(said);
        const auto reply = routes.reply(true, QStringLiteral("/.local/contact"), said);
        ASSERT_TRUE(reply);
        EXPECT_EQ(QJsonDocument::fromJson(reply->body)[QLatin1String("state")].toString(), QStringLiteral("dropped"));
    }
    EXPECT_EQ(routes.reply(true, QStringLiteral("/.local/unheard"), "{}")->status, 404);
    EXPECT_TRUE(rooms.calls.visits().isEmpty());
}

TEST(LocalConferenceServer, ListensWhereItSaysAndNowhereElse)
{
    LocalConference server;
    EXPECT_TRUE(server.url().isEmpty());
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    EXPECT_FALSE(server.listen(other.serverPort()));
    EXPECT_TRUE(server.url().isEmpty());
    ASSERT_TRUE(server.listen());
    const auto port = quint16(server.url().port());
    EXPECT_EQ(server.url().toString(), QStringLiteral("http://localhost:%1").arg(port));

    const auto reaches = [port](const QHostAddress& address) {
        QTcpSocket socket;
        socket.connectToHost(address, port);
        return socket.waitForConnected(2000);
    };
    EXPECT_TRUE(reaches(QHostAddress(QHostAddress::LocalHost)));
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (!address.isLoopback() && address.protocol() == QAbstractSocket::IPv4Protocol) {
            EXPECT_FALSE(reaches(address)) << address.toString().toStdString();
        }
    }

    // A connection that says nothing, one that says half, one that says nonsense: none holds up the end.
    QTcpSocket sockets[3];
    for (QTcpSocket& socket : sockets) {
        socket.connectToHost(QHostAddress::LocalHost, port);
        ASSERT_TRUE(socket.waitForConnected(2000));
    }
    sockets[1].write("GET /oda HTT");
    sockets[2].write(QByteArray(5000, '\0') + "\r\n\r\n");
    waitOut(100);
    ASSERT_TRUE(server.listen(port)); // anew at the same port
    for (QTcpSocket& socket : sockets)
        EXPECT_TRUE(waitUntil([&] { return socket.state() == QAbstractSocket::UnconnectedState; }, 5000));
    EXPECT_TRUE(reaches(QHostAddress(QHostAddress::LocalHost)));
    server.close();
    EXPECT_FALSE(reaches(QHostAddress(QHostAddress::LocalHost)));
}

} // namespace kelvara::test
