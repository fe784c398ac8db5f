#include "HostileChip.h"

#include "Reader.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/reading/PassportReading.h"

#include <thread>

namespace kelvara {
namespace {

using chip::Bytes;
using chip::ByteView;

struct Ending
{
    ErrorKind kind = ErrorKind::AlreadyReading;
    std::size_t commands = 0;
    int presentations = 0;
};

/// How a read of such a chip ends.
Ending endOf(HostileChip& hostile)
{
    const auto key = chip::MrzKey::fromFields("D23145890", "740812", "320415");
    const chip::CancelToken cancel;
    chip::PassportReading reading(*key, {}, hostile, cancel, { 100ms, 100ms }, [](const NFCViewDisplayMessage&) {});
    auto outcome = reading.run();
    const auto* const error = std::get_if<NFCPassportReaderError>(&outcome);
    return { error ? error->kind : ErrorKind::AlreadyReading, hostile.commands(), reading.presentations() };
}

bool isRead(ByteView command)
{
    return command.size() > 1 && (command[1] == 0xB0 || command[1] == 0xB1);
}

Bytes succeeding(Bytes data)
{
    data.insert(data.end(), { 0x90, 0x00 });
    return data;
}

/// Selections succeed; there is no challenge, so that files are read in the clear.
std::optional<Bytes> openChip(ByteView command)
{
    if (command.size() > 1 && command[1] == 0xA4)
        return Bytes { 0x90, 0x00 };
    return Bytes { 0x6D, 0x00 };
}

TEST(HostileChips, AreGivenUpInTime)
{
    struct Row
    {
        const char* name;
        HostileChip::Answer answer;
    };
    std::size_t turn = 0;
    const auto largeFile = [](ByteView command, std::size_t size) { // a file of 4 MiB, in pieces of `size`
        const bool isHead = command.size() > 3 && command[1] == 0xB0 && command[2] == 0 && command[3] == 0;
        Bytes answer = isHead ? *chip::fromHex("31 83 3F FF F0") : Bytes(size, 0x41);
        return succeeding(command[1] == 0xB1 ? chip::makeTlv(0x53, answer) : answer);
    };
    const Row rows[] = {
        { "there is always more, and never anything",
            [](ByteView) {
                return Bytes { 0x61, 0x00 };
            } },
        { "one byte more each time",
            [](ByteView) {
                return Bytes { 0x41, 0x61, 0x01 };
            } },
        { "a file byte by byte", [&](ByteView c) { return isRead(c) ? largeFile(c, 1) : openChip(c); } },
        { "files without end", [&](ByteView c) { return isRead(c) ? largeFile(c, 80) : openChip(c); } },
        { "reads of nothing",
            [](ByteView c) {
                return isRead(c) ? Bytes { 0x90, 0x00 } : openChip(c);
            } },
        { "one byte less is right",
            [](ByteView c) {
                return isRead(c) ? Bytes { 0x6C, 0x01 } : openChip(c);
            } },
        { "another length is right",
            [&](ByteView c) {
                return isRead(c) ? Bytes { 0x6C, static_cast<std::uint8_t>(255 - turn++ % 255) } : openChip(c);
            } },
        { "wrong length",
            [](ByteView c) {
                return isRead(c) ? Bytes { 0x67, 0x00 } : openChip(c);
            } },
        { "leaves after every byte",
            [&](ByteView c) {
                return isRead(c) && ++turn % 2 == 0 ? std::optional<Bytes>()
                    : isRead(c)                     ? largeFile(c, 1)
                                                    : openChip(c);
            } },
        { "gains and forgets",
            [&](ByteView c) {
                if (!isRead(c))
                    return openChip(c);
                switch (++turn % 4) {
                case 0:
                    return std::optional<Bytes>();
                case 3:
                    return std::optional(succeeding(Bytes(70'000, 1)));
                default:
                    return std::optional(largeFile(c, 1));
                }
            } },
        { "is gone at once", [](ByteView) { return std::optional<Bytes>(); } },
        { "says nothing", [](ByteView) { return Bytes {}; } },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        turn = 0;
        HostileChip hostile(row.answer);
        const Ending end = endOf(hostile);
        EXPECT_TRUE(end.kind == ErrorKind::ConnectionFailed || end.kind == ErrorKind::TagLost
            || end.kind == ErrorKind::UnsupportedCard)
            << static_cast<int>(end.kind);
        // At some 15 ms a command, a minute or two at the very most.
        EXPECT_LE(end.commands, 10'100U);
        RecordProperty(row.name, static_cast<int>(end.commands));
    }
}

TEST(HostileChips, MayNotTakeForEverOverTheirAnswers)
{
    HostileChip slow([](ByteView) {
        std::this_thread::sleep_for(5ms);
        return Bytes { 0x90, 0x00 };
    });
    const chip::CancelToken cancel;
    chip::ReadBudget budget(1000, 30ms);
    std::size_t answers = 0;
    bool isOver = false;
    while (!isOver && answers < 100) { // whatever is done with the card in between
        const auto channel = std::get<std::unique_ptr<chip::CardChannel>>(slow.waitForCard(1s, cancel));
        chip::ChipLine line(*channel, cancel, budget);
        for (int i = 0; i < 2 && !isOver; ++i, ++answers)
            isOver = std::holds_alternative<chip::LineFailure>(line.exchange({ 0x00, 0x84, 0x00, 0x00, {}, 8 }));
    }
    EXPECT_TRUE(isOver && budget.isSpent());
    EXPECT_LE(slow.commands(), 6U);
}

} // namespace
} // namespace kelvara
