#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/reading/FileReading.h"
#include "Platform/Chip/software/ChipFiles.h"
#include "Platform/Chip/software/SoftwareChip.h"
#include "Platform/Chip/software/VirtualReaderCard.h"
#include "Platform/Chip/transport/AnswerToReset.h"
#include "Platform/Chip/transport/PcscTerminal.h"
#include "Tests/Support/ReaderService.h"

#include <QElapsedTimer>

#include <future>
#include <gtest/gtest.h>
#include <thread>

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
    static void SetUpTestSuite() { service = test::ReaderService::start(); }
    static void TearDownTestSuite() { service.reset(); }
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

    static inline std::unique_ptr<test::ReaderService> service;
    CancelToken cancel;
};

TEST_F(Pcsc, ReadsAFileThroughTheService)
{
    const Bytes content = makeTlv(0x75, Bytes(17'000, 0x5A));
    ChipFiles files;
    files.add(0x0102, content, true);
    for (const bool extended : { true, false }) {
        const VirtualReaderCard card(
            cardOf(files, extended ? kExtendedAtr : *fromHex("3B 80 80 01 01")), service->port());
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

TEST_F(Pcsc, ReadsAWholeDocumentThroughTheService)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "after Qt has forked for the service, the thread sanitizer misses the main thread's locks";
#endif
    software::ChipProfile profile;
    profile.activeAuthentication.emplace();
    profile.activeAuthentication->rsaBits = 2048; // whose signature needs the extended length
    auto made = software::SoftwareChip::make(profile);
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<software::SoftwareChip>>(made));
    const auto chip = std::get<std::shared_ptr<software::SoftwareChip>>(made);
    std::promise<std::pair<std::shared_ptr<NFCPassportModel>, std::optional<NFCPassportReaderError>>> promise;
    auto outcome = promise.get_future();
    PassportReader reader;
    reader.setTerminal(std::make_shared<PcscTerminal>());
    reader.readPassport(chip->mrzKey(), {}, true, {}, [&](auto passport, auto error) {
        promise.set_value({ passport, error });
    });
    std::this_thread::sleep_for(200ms);
    const VirtualReaderCard card(software::virtualReaderCard(chip), service->port());
    ASSERT_TRUE(card.problem().empty()) << card.problem();
    const auto [passport, error] = outcome.get();
    ASSERT_TRUE(passport) << error->debugDescription().toStdString();
    for (const auto& [id, group] : passport->dataGroupsRead)
        EXPECT_EQ(rawOf(group), chip->files().at(id));
    EXPECT_EQ(passport->verification.pace, ProtocolOutcome::Succeeded);
    EXPECT_EQ(passport->verification.chipAuthentication, ProtocolOutcome::Succeeded);
    EXPECT_EQ(passport->verification.activeAuthentication, ProtocolOutcome::Succeeded);
}

TEST_F(Pcsc, TellsACardThatLeftFromOneThatNeverCame)
{
    ChipFiles files;
    PcscTerminal terminal;
    std::this_thread::sleep_for(1s); // the service looks every 400 ms whether the last test's card is still there
    auto none = terminal.waitForCard(300ms, cancel);
    EXPECT_EQ(std::get<TransportError>(none).kind, Kind::NoCard) << std::get<TransportError>(none).detail;

    auto card = std::make_unique<VirtualReaderCard>(cardOf(files), service->port());
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
        card = std::make_unique<VirtualReaderCard>(cardOf(files), service->port());
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
