#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/Chip/transport/PcscTerminal.h"
#include "Tests/ChipSheet/SheetRig.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <set>

namespace kelvara {
namespace {

using namespace std::chrono_literals;
using chip::Failure;
using chip::Kind;

TEST(ReaderTexts, EveryKindHasItsOwn)
{
    std::set<QString> texts;
    std::set<std::string_view> names;
    for (int kind = 0; kind <= int(Failure::ConnectionFailed); ++kind) {
        const QString text = chip::failure(Failure(kind)).message();
        EXPECT_GE(text.count(QLatin1Char('.')) + text.count(QLatin1Char(';')), 2)
            << "cause and remedy: " << text.toStdString();
        EXPECT_LE(text.size(), 130) << text.toStdString();
        EXPECT_EQ(chip::failed(Failure(kind)).text(), text);
        texts.insert(text);
        names.insert(nameOf(Failure(kind)));
    }
    EXPECT_EQ(texts.size(), std::size_t(Failure::ConnectionFailed) + 1);
    EXPECT_EQ(names.size(), texts.size());
    EXPECT_EQ(names.count("Unknown"), 0U);

    for (const Kind kind :
        { Kind::requestPresentCard, Kind::authenticating, Kind::readingDataGroup, Kind::successfulRead })
        EXPECT_TRUE(texts.insert(chip::message(kind).text()).second);
    EXPECT_TRUE(texts.insert(chip::message(Kind::requestPresentCard, 0, true).text()).second);
    EXPECT_FALSE(chip::message(Kind::error).text().isEmpty()) << "an error that says nothing of itself";
    for (const chip::DataGroupEntry& file : chip::dataGroupEntries()) {
        NFCViewDisplayMessage reading = chip::message(Kind::readingDataGroup);
        reading.dataGroup = file.id;
        EXPECT_TRUE(reading.text().contains(QString::fromUtf8("okunuyor…"))) << file.name;
    }
}

TEST(ReaderTexts, DebugDescriptionIsOneLine)
{
    NFCPassportReaderError error = chip::failure(Failure::WrongKey, "PACE step 4\nrefused", 0x6300);
    error.dataGroup = chip::DataGroupId::DG2;
    EXPECT_EQ(error.debugDescription(), QStringLiteral("WrongKey: PACE step 4 refused (DG2, status word 6300)"));
    EXPECT_EQ(chip::failure(Failure::Timeout).debugDescription(), QStringLiteral("Timeout"));
    EXPECT_EQ(
        chip::failure(Failure::TagLost, {}, 0x0a).debugDescription(), QStringLiteral("TagLost (status word 000a)"));
}

int s_warnings = 0;

TEST(NativeSession, WithoutAReaderItSaysSoOnceAndReadsNothing)
{
    // A machine may have a reader of its own; here its service cannot be found.
    const QTemporaryDir empty;
    qputenv("PCSCLITE_CSOCK_NAME", empty.filePath(QStringLiteral("none")).toLocal8Bit());
    if (chip::PcscTerminal().isServiceRunning())
        GTEST_SKIP() << "this build of the PC/SC library cannot be led astray";
    s_warnings = 0;
    const auto previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString&) {
        if (type == QtWarningMsg && QLatin1String(context.category) == QLatin1String("kelvara.chip"))
            ++s_warnings;
    });
    QElapsedTimer clock;
    clock.start();
    for (int asked = 0; asked < 3; ++asked)
        EXPECT_FALSE(NFCReaderSession::native()->readingAvailable());
    EXPECT_LT(clock.elapsed(), 3000);
    qInstallMessageHandler(previous);
    EXPECT_EQ(s_warnings, 1);

    const auto terminal = NFCReaderSession::native()->terminal();
    ASSERT_TRUE(terminal) << "a reader may be connected later";
    const auto card = terminal->waitForCard(200ms, chip::CancelToken());
    ASSERT_TRUE(std::holds_alternative<chip::TransportError>(card));
    EXPECT_EQ(std::get<chip::TransportError>(card).kind, chip::TransportError::Kind::NoReader);
    qunsetenv("PCSCLITE_CSOCK_NAME");
}

TEST(GivenSession, AsksItsTerminal)
{
    struct Terminal final : chip::CardTerminal
    {
        [[nodiscard]] bool isAvailable() const override { return available; }
        [[nodiscard]] std::variant<std::unique_ptr<chip::CardChannel>, chip::TransportError> waitForCard(
            std::chrono::milliseconds, const chip::CancelToken&) override
        {
            return chip::TransportError {};
        }
        bool available = true;
    };
    const auto terminal = std::make_shared<Terminal>();
    const auto session = NFCReaderSession::of(terminal);
    EXPECT_TRUE(session->readingAvailable());
    EXPECT_EQ(session->terminal(), terminal);
    terminal->available = false;
    EXPECT_FALSE(session->readingAvailable());
    EXPECT_FALSE(NFCReaderSession::of(nullptr)->readingAvailable());
    EXPECT_EQ(NFCReaderSession::of(nullptr)->terminal(), nullptr);
}

} // namespace
} // namespace kelvara
