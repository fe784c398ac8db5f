#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/reading/FileReading.h"
#include "Platform/Chip/software/ChipFiles.h"
#include "Platform/Chip/software/VirtualReaderCard.h"
#include "Platform/Chip/transport/AnswerToReset.h"
#include "Platform/Chip/transport/PcscTerminal.h"
#include "Tests/Chip/ChipDriver.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryFile>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace kelvara::chip {
namespace {

using namespace std::chrono_literals;
using software::ChipFiles;
using software::VirtualReaderCard;
using Kind = TransportError::Kind;

/// Historical bytes with card capabilities: extended length, by DF name.
const Bytes kExtendedAtr = *fromHex("3B 85 80 01 80 73 80 01 40 B6");

TEST(AnswerToReset, TellsOfExtendedLength)
{
    const struct
    {
        const char* atr;
        bool extended;
    } rows[] = { { "3B 85 80 01 80 73 80 01 40 B6", true }, { "3B 85 80 01 80 73 80 01 00 F6", false },
        { "3B 80 80 01 01", false }, { "3B 88 80 01 00 73 C8 40 40 00 90 00 00", true },
        { "3B 8F 80 01 80 4F 0C A0 00 00 03 06 03 00 01 00 00 00 00 6A", false }, { "", false }, { "3B", false },
        { "3B FF", false }, { "3B 83 80 01 80 73 80", false }, { "3B 8F 80 01 80 7F FF", false } };
    for (const auto& row : rows)
        EXPECT_EQ(announcesExtendedLength(*fromHex(row.atr)), row.extended) << row.atr;
}

/// The real PC/SC service with a virtual reader.
class Pcsc : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const QString program = QStandardPaths::findExecutable(
            QStringLiteral("pcscd"), { QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin") });
        if (program.isEmpty() || geteuid() != 0 || !QFile::exists(QLatin1String(kDriver)))
            return;
        if (PcscTerminal().isServiceRunning())
            return; // the machine's own is left alone
        // A port of its own: the usual one stays taken for a minute after an earlier service.
        QTcpServer free;
        ASSERT_TRUE(free.listen(QHostAddress::LocalHost));
        port = free.serverPort();
        free.close();
        configuration = new QTemporaryFile;
        ASSERT_TRUE(configuration->open());
        configuration->write(QStringLiteral("FRIENDLYNAME \"Virtual PCD\"\nDEVICENAME /dev/null:0x%1\nLIBPATH %2\n"
                                            "CHANNELID 0x%1\n")
                                 .arg(port, 0, 16)
                                 .arg(QLatin1String(kDriver))
                                 .toLatin1());
        configuration->close();
        service = new QProcess;
        service->setProgram(program);
        service->setArguments({ QStringLiteral("-f"), QStringLiteral("-c"), configuration->fileName() });
        // A test that dies must not leave it running: the next one's could not start.
        service->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
        QElapsedTimer clock;
        clock.start();
        while (!PcscTerminal().isAvailable() && clock.elapsed() < 20'000) {
            // It refuses to start beside another one, which may be on its way out.
            if (service->waitForFinished(50) || service->state() == QProcess::NotRunning)
                service->start();
        }
    }
    static void TearDownTestSuite()
    {
        if (!service)
            return;
        service->terminate();
        service->waitForFinished(10'000);
        delete service;
        service = nullptr;
        delete configuration;
    }
    void SetUp() override
    {
        if (!service)
            GTEST_SKIP() << "needs pcscd, vsmartcard-vpcd, root, and no other reader service";
        ASSERT_TRUE(PcscTerminal().isAvailable()) << "pcscd started, but there is no virtual reader";
    }
    static VirtualReaderCard::Card cardOf(ChipFiles& files, Bytes atr = kExtendedAtr)
    {
        return { [&files](ByteView command) {
                    const auto decoded = CommandApdu::decoded(command);
                    const auto answer = decoded ? files.answer(*decoded) : std::nullopt;
                    return answer.value_or(ResponseApdu { {}, 0x6D00 }).encoded();
                },
            [&files] { files.reset(); }, std::move(atr) };
    }

    static constexpr const char* kDriver = "/usr/lib/pcsc/drivers/serial/libifdvpcd.so";
    static inline QProcess* service = nullptr;
    static inline QTemporaryFile* configuration = nullptr;
    static inline std::uint16_t port = 0;
    CancelToken cancel;
};

TEST_F(Pcsc, ReadsAFileThroughTheService)
{
    const Bytes content = makeTlv(0x75, Bytes(17'000, 0x5A));
    ChipFiles files;
    files.add(0x0102, content, true);
    for (const bool extended : { true, false }) {
        const VirtualReaderCard card(cardOf(files, extended ? kExtendedAtr : *fromHex("3B 80 80 01 01")), port);
        ASSERT_TRUE(card.problem().empty()) << card.problem();
        auto opened = PcscTerminal().waitForCard(10s, cancel);
        ASSERT_TRUE(std::holds_alternative<std::unique_ptr<CardChannel>>(opened))
            << std::get<TransportError>(opened).detail;
        CardChannel& channel = *std::get<std::unique_ptr<CardChannel>>(opened);
        EXPECT_EQ(channel.passesExtendedLength(), extended);
        const CommandApdu select { 0x00, 0xA4, 0x04, 0x0C, *fromHex("A0000002471001"), std::nullopt };
        ASSERT_EQ(toHex(std::get<Bytes>(channel.transmit(select.encoded()))), "9000");
        BlockSize blockSize = BlockSize::widest(channel.passesExtendedLength());
        FileReading reading(0x0102, blockSize);
        while (reading.state() == FileReading::State::Reading) {
            const auto answer = channel.transmit(reading.next().encoded());
            ASSERT_TRUE(std::holds_alternative<Bytes>(answer)) << std::get<TransportError>(answer).detail;
            reading.feed(*ResponseApdu::decoded(std::get<Bytes>(answer)));
        }
        EXPECT_EQ(reading.content(), content);
    }
}

TEST_F(Pcsc, AWholeChipInSoftwareLiesOnTheMachinesReader)
{
    const auto chip = chipOf(quickProfile());
    ASSERT_TRUE(chip);
    const VirtualReaderCard card(software::virtualReaderCard(chip), port);
    ASSERT_TRUE(card.problem().empty()) << card.problem();
    auto opened = PcscTerminal().waitForCard(10s, cancel);
    ASSERT_TRUE(std::holds_alternative<std::unique_ptr<CardChannel>>(opened))
        << std::get<TransportError>(opened).detail;
    CardChannel& channel = *std::get<std::unique_ptr<CardChannel>>(opened);
    const auto transmit = [&](ByteView command) {
        auto answer = channel.transmit(command);
        EXPECT_TRUE(std::holds_alternative<Bytes>(answer)) << std::get<TransportError>(answer).detail;
        return std::holds_alternative<Bytes>(answer) ? std::get<Bytes>(answer) : Bytes();
    };
    ChipDriver driver(transmit, chip->mrzKey(), channel.passesExtendedLength());
    ASSERT_TRUE(driver.openByPace());
    ASSERT_EQ(driver.selectApplication(), 0x9000);
    EXPECT_EQ(driver.read(DataGroupId::DG2), chip->files().at(DataGroupId::DG2));
    EXPECT_TRUE(driver.authenticateChip());
}

TEST_F(Pcsc, TellsACardThatLeftFromOneThatNeverCame)
{
    ChipFiles files;
    PcscTerminal terminal;
    std::this_thread::sleep_for(1s); // the service looks every 400 ms whether the last test's card is still there
    auto none = terminal.waitForCard(300ms, cancel);
    EXPECT_EQ(std::get<TransportError>(none).kind, Kind::NoCard) << std::get<TransportError>(none).detail;

    auto card = std::make_unique<VirtualReaderCard>(cardOf(files), port);
    auto opened = terminal.waitForCard(10s, cancel);
    auto& channel = std::get<std::unique_ptr<CardChannel>>(opened);
    card.reset();
    std::this_thread::sleep_for(1s); // else the virtual reader breaks off in mid-command and takes no card any more
    const auto answer = channel->transmit(*fromHex("00A4020C020101"));
    ASSERT_TRUE(std::holds_alternative<TransportError>(answer));
    EXPECT_EQ(std::get<TransportError>(answer).kind, Kind::CardLost) << std::get<TransportError>(answer).detail;
    channel.reset();

    // It comes back while the reader waits.
    std::thread later([&] {
        std::this_thread::sleep_for(300ms);
        card = std::make_unique<VirtualReaderCard>(cardOf(files), port);
    });
    auto again = terminal.waitForCard(10s, cancel);
    later.join();
    EXPECT_TRUE(card->problem().empty()) << card->problem();
    EXPECT_TRUE(std::holds_alternative<std::unique_ptr<CardChannel>>(again)) << std::get<TransportError>(again).detail;
}

TEST_F(Pcsc, WaitingCanBeCancelled)
{
    std::thread other([this] {
        std::this_thread::sleep_for(200ms);
        cancel.cancel();
    });
    QElapsedTimer clock;
    clock.start();
    const auto outcome = PcscTerminal().waitForCard(60s, cancel);
    other.join();
    EXPECT_EQ(std::get<TransportError>(outcome).kind, Kind::Cancelled);
    EXPECT_LT(clock.elapsed(), 20'000);
}

TEST(PcscWithoutTheReader, IsADeviceWithoutAReader)
{
    // Whether the service runs or not.
    CancelToken cancel;
    PcscTerminal terminal("no such reader");
    EXPECT_FALSE(terminal.isAvailable());
    EXPECT_EQ(std::get<TransportError>(terminal.waitForCard(250ms, cancel)).kind, Kind::NoReader);
}

} // namespace
} // namespace kelvara::chip
