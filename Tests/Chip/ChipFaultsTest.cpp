#include "ChipDriver.h"

namespace kelvara::chip {
namespace {

using namespace software;
using Id = DataGroupId;

/// A chip without locks, so that every answer is known: SELECT gives 9000.
std::shared_ptr<SoftwareChip> openChip()
{
    ChipProfile profile = quickProfile();
    profile.hasAccessControl = false;
    profile.chipAuthentication.clear();
    return chipOf(profile);
}

const Bytes kSelect = *fromHex("00A4040C07A0000002471001");

TEST(ChipFaults, HitTheCommandThatTheyName)
{
    const auto chip = openChip();
    const struct
    {
        ChipFault fault;
        std::string third;
    } rows[] = {
        { ChipFault::tagLost(3), "" },
        { ChipFault::bitFlip(3, 0, 7), "1000" },
        { ChipFault::bitFlip(3, 3, 0), "9001" }, // round again: the answer has two bytes
        { ChipFault::statusWord(3, 0x6F01), "6F01" },
        { ChipFault::emptyAnswer(3), "" },
        { ChipFault::sessionEnd(3, 0x6700), "6700" },
    };
    for (const auto& row : rows) {
        for (const auto counting : { ChipFault::Counting::ChipLife, ChipFault::Counting::Presentation }) {
            const auto fresh = openChip();
            ChipFault fault = row.fault;
            fault.counting = counting;
            fresh->setFaults({ { fault } });
            for (int presentation = 1; presentation <= 2; ++presentation) {
                fresh->powerUp();
                for (int command = 1; command <= 4; ++command) {
                    const auto reaction = fresh->react(kSelect);
                    const bool isMeant
                        = command == 3 && (presentation == 1 || counting == ChipFault::Counting::Presentation);
                    const bool isGone = command > 3 && fault.kind == ChipFault::Kind::TagLost
                        && (presentation == 1 || counting == ChipFault::Counting::Presentation);
                    EXPECT_EQ(toHex(reaction.answer),
                        isMeant      ? row.third
                            : isGone ? ""
                                     : "9000")
                        << nameOf(fault.kind) << ' ' << presentation << ' ' << command;
                    EXPECT_EQ(reaction.isLost, (isMeant || isGone) && fault.kind == ChipFault::Kind::TagLost);
                }
            }
            EXPECT_EQ(faultOfName(nameOf(fault.kind)), fault.kind);
        }
    }
    chip->setFaults({ { ChipFault::garbage(1, 33) } });
    EXPECT_EQ(chip->transmit(kSelect).size(), 33U);
}

TEST(ChipFaults, SeededPlacesComeAgain)
{
    std::set<std::string> seen;
    for (std::uint32_t seed = 1; seed <= 8; ++seed) {
        std::string first;
        for (int round = 0; round < 2; ++round) {
            const auto chip = openChip();
            chip->setFaults({ .list = { ChipFault::bitFlip(1) }, .seed = seed });
            const std::string answer = toHex(chip->transmit(kSelect));
            EXPECT_NE(answer, "9000");
            if (round == 0)
                first = answer;
            EXPECT_EQ(answer, first);
        }
        seen.insert(first);
    }
    EXPECT_GT(seen.size(), 3U);
}

TEST(ChipFaults, DelaysAreTold)
{
    using namespace std::chrono_literals;
    const auto chip = openChip();
    chip->setFaults({ .list = { ChipFault::delayed(2, 300ms) }, .delay = 20ms });
    EXPECT_EQ(chip->react(kSelect).delay, 20ms);
    EXPECT_EQ(chip->react(kSelect).delay, 320ms);
    EXPECT_EQ(chip->react(kSelect).delay, 20ms);
}

TEST(ChipFaults, ARefusedReadEndsTheSession)
{
    for (const bool ends : { false, true }) {
        ChipProfile profile = quickProfile();
        profile.reading = { 160, 0x6700 };
        profile.faults.refusedReadEndsSession = ends;
        const auto chip = chipOf(profile);
        ChipDriver driver(chip);
        ASSERT_TRUE(driver.openByBac());
        ASSERT_EQ(driver.select(Id::DG1), 0x9000);
        EXPECT_EQ(driver.send({ 0x00, 0xB0, 0x00, 0x00, {}, 224 }).sw, 0x6700);
        EXPECT_EQ(driver.hasSession(), !ends);
        if (ends) {
            EXPECT_EQ(driver.failure()->error, MessagingError::Unprotected);
            EXPECT_EQ(driver.sendPlain({ 0x0C, 0xB0, 0x00, 0x00, *fromHex("8E080000000000000000"), 256 }).sw, 0x6982);
            EXPECT_EQ(driver.select(Id::DG1), 0x6982);
        } else {
            EXPECT_TRUE(driver.read(Id::DG1));
        }
    }
    // The same once, at a command of choice.
    const auto chip = chipOf(quickProfile());
    chip->setFaults({ { ChipFault::sessionEnd(5) } });
    ChipDriver driver(chip);
    ASSERT_TRUE(driver.openByBac());
    EXPECT_FALSE(driver.read(Id::DG2));
    EXPECT_EQ(driver.select(Id::DG2), 0x6982);
    ASSERT_TRUE(driver.openByBac());
    EXPECT_TRUE(driver.read(Id::DG2));
}

TEST(ChipFaults, NoSpoiltAnswerGetsThroughSecureMessaging)
{
    const auto chip = chipOf(quickProfile());
    for (const std::size_t byte : { 0U, 5U, 40U, 90U, 200U }) { // ciphertext, status, checksum
        const unsigned before = 3 + 1; // BAC's commands and SELECT
        ChipFault fault = ChipFault::bitFlip(before + 1, byte);
        fault.counting = ChipFault::Counting::Presentation;
        chip->setFaults({ { fault } });
        ChipDriver driver(chip);
        ASSERT_TRUE(driver.openByBac());
        ASSERT_EQ(driver.select(Id::DG2), 0x9000);
        EXPECT_TRUE(driver.send({ 0x00, 0xB0, 0x00, 0x00, {}, 200 }).data.empty());
        EXPECT_EQ(driver.failure()->error, MessagingError::BadChecksum);
    }
}

} // namespace
} // namespace kelvara::chip
