#include "Platform/Chip/reading/FileReading.h"
#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/software/ChipFiles.h"

#include <gtest/gtest.h>

namespace kelvara::chip {
namespace {

using software::ChipFiles;
using software::ReadingManners;

constexpr std::uint16_t kFile = 0x0102;

Bytes fileOf(std::size_t valueSize)
{
    Bytes value(valueSize);
    for (std::size_t i = 0; i < valueSize; ++i)
        value[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    return makeTlv(0x75, value);
}

void selectApplication(ChipFiles& files)
{
    const auto answer = files.answer({ 0x00, 0xA4, 0x04, 0x0C, *fromHex("A0000002471001"), std::nullopt });
    ASSERT_TRUE(answer && answer->isSuccess());
}

ChipFiles chipWith(const Bytes& file, ReadingManners manners)
{
    ChipFiles files(manners);
    files.add(kFile, file, true);
    selectApplication(files);
    return files;
}

struct Outcome
{
    FileReading reading;
    int commands = 0;
};

/// Reads; the card is lost before the command of that number and comes back.
Outcome readWhole(ChipFiles files, BlockSize& blockSize, int lostBefore = -1)
{
    Outcome outcome { FileReading(kFile, blockSize), 0 };
    while (outcome.reading.state() == FileReading::State::Reading && outcome.commands < 10'000) {
        if (outcome.commands == lostBefore) {
            files.reset();
            selectApplication(files);
            outcome.reading.resume();
        }
        const auto command = CommandApdu::decoded(outcome.reading.next().encoded());
        outcome.reading.feed(*files.answer(*command));
        ++outcome.commands;
    }
    return outcome;
}

TEST(FileReading, ReadsWholeFromEveryKindOfChip)
{
    const ReadingManners manners[] = { {}, { 224, 0x6700 }, { 160, 0x6C00 }, { 224, 0x6282 }, { 96, 0x6B00 },
        { 1024, 0x6F00, 0x6B00 }, { 65536, 0x9000, 0x6B00 }, { 231, 0x9000 }, { 224, 0x6700, 0x9000, false } };
    for (const ReadingManners& manner : manners) {
        for (const std::size_t size :
            { 0U, 1U, 5U, 122U, 218U, 219U, 300U, 4096U, 32'760U, 32'764U, 33'000U, 70'000U }) {
            const Bytes file = fileOf(size);
            if (manner.endOfFileAnswer == 0x6B00 && file.size() < 6)
                continue; // shorter than any file of the LDS, and such a chip would not give its head
            for (const bool extended : { true, false }) {
                BlockSize blockSize = BlockSize::widest(extended);
                const Outcome outcome = readWhole(chipWith(file, manner), blockSize);
                EXPECT_EQ(outcome.reading.content(), file) << size << " bytes, at most " << manner.longestAnswer;
                EXPECT_EQ(outcome.reading.state(), FileReading::State::Done);
            }
        }
    }
}

TEST(FileReading, LearnsTheBlockOnceAndSparesCommands)
{
    BlockSize blockSize = BlockSize::widest(true);
    EXPECT_EQ(readWhole(chipWith(fileOf(17'000), {}), blockSize).commands, 1 + 5);
    EXPECT_EQ(readWhole(chipWith(fileOf(40), {}), blockSize).commands, 2);
    const ReadingManners narrow { 224, 0x6700 };
    readWhole(chipWith(fileOf(40), narrow), blockSize);
    readWhole(chipWith(fileOf(2000), narrow), blockSize);
    EXPECT_EQ(blockSize.bytes, 224U);
    EXPECT_EQ(readWhole(chipWith(fileOf(2000), narrow), blockSize).commands, 1 + 1 + 9);
}

TEST(FileReading, GoesOnAfterTheCardWasLostAnywhere)
{
    const Bytes file = fileOf(40'000);
    BlockSize blockSize = BlockSize::widest(true);
    const int commands = readWhole(chipWith(file, {}), blockSize).commands;
    for (int lost = 0; lost < commands; ++lost) {
        const Outcome outcome = readWhole(chipWith(file, {}), blockSize, lost);
        EXPECT_EQ(outcome.reading.content(), file) << "lost before command " << lost;
        EXPECT_LE(outcome.commands, commands + 1) << "what was read is kept";
    }
}

TEST(FileReading, EndsWithWhatAChipSaysInsteadOfAFile)
{
    BlockSize blockSize;
    FileReading missing(kFile, blockSize);
    missing.feed({ {}, 0x6A82 });
    EXPECT_EQ(missing.state(), FileReading::State::Failed);
    EXPECT_TRUE(missing.isMissing());

    struct Row
    {
        const char* data;
        std::uint16_t sw;
        std::uint16_t failure;
    };
    // Locked; no object; a length that no chip has; nothing, again and again.
    for (const Row& row : { Row { "", 0x6982, 0x6982 }, Row { "1F FF FF FF FF FF", 0x9000, 0 },
             Row { "75 84 7F FF FF FF", 0x9000, 0 }, Row { "", 0x9000, 0 }, Row { "", 0x6700, 0x6700 } }) {
        BlockSize fresh;
        FileReading reading(kFile, fresh);
        reading.feed({ {}, 0x9000 });
        for (int i = 0; i < 50 && reading.state() == FileReading::State::Reading; ++i)
            reading.feed({ *fromHex(row.data), row.sw });
        EXPECT_EQ(reading.state(), FileReading::State::Failed) << row.data;
        EXPECT_EQ(reading.failure(), row.failure) << row.data;
        EXPECT_FALSE(reading.isMissing());
    }
    FileReading flooded(kFile, blockSize);
    flooded.feed({ {}, 0x9000 });
    flooded.feed({ fileOf(5000), 0x9000 });
    EXPECT_EQ(flooded.state(), FileReading::State::Failed) << "more than was asked for";
}

} // namespace
} // namespace kelvara::chip
