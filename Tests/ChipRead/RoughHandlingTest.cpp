#include "Reader.h"

#include <random>

namespace kelvara {
namespace {

TEST(RoughlyHandledChip, ATagLostAtAnyCommandIsReadOnAfterwards)
{
    ChipProfile profile = plainProfile();
    profile.pace = { {} };
    profile.activeAuthentication.emplace();
    profile.activeAuthentication->curve = "prime256v1";
    const auto chip = makeChip(profile);
    const auto whole = std::make_shared<SoftwareTerminal>(chip);
    expectWhole(readFrom(whole, chip->mrzKey()), *chip);
    const unsigned commands = whole->counts().commands;
    for (unsigned at = 1; at <= commands; ++at) {
        SCOPED_TRACE(at);
        ChipFaults faults;
        faults.list = {
            { .kind = ChipFault::Kind::TagLost, .command = at, .counting = ChipFault::Counting::ChipLife, .byte = {} }
        };
        const auto fresh = makeChip(profile);
        fresh->setFaults(faults);
        const auto terminal = std::make_shared<SoftwareTerminal>(fresh);
        terminal->setReturnAfterLoss(0ms);
        const Outcome outcome = readFrom(terminal, fresh->mrzKey());
        expectWhole(outcome, *fresh);
        EXPECT_EQ(terminal->counts().presentations, 2U);
        EXPECT_LE(terminal->counts().commands, commands + 12) << "what was read is not read again";
    }
}

TEST(RoughlyHandledChip, ABitFlippedInAnyAnswerIsNoticedOrMended)
{
    for (const bool isPace : { false, true }) {
        ChipProfile profile = plainProfile();
        if (isPace)
            profile.pace = { {} };
        const auto model = makeChip(profile);
        const auto whole = std::make_shared<SoftwareTerminal>(model);
        expectWhole(readFrom(whole, model->mrzKey()), *model);
        for (unsigned at = 1; at <= whole->counts().commands; ++at) {
            SCOPED_TRACE(at);
            const auto chip = makeChip(profile);
            ChipFaults faults;
            faults.seed = at;
            faults.list = { ChipFault::bitFlip(at, {}, at % 8) };
            chip->setFaults(faults);
            const Outcome outcome = readChip(chip);
            if (outcome.passport)
                expectWhole(outcome, *chip);
            else
                EXPECT_TRUE(outcome.error);
        }
    }
}

TEST(RoughlyHandledChip, NoAnswerMakesItHangOrFall)
{
    std::mt19937 dice(5);
    for (unsigned round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const auto chip = makeChip(plainProfile());
        ChipFaults faults;
        faults.seed = round;
        for (int i = 0; i < 4; ++i) {
            const unsigned at = 1 + static_cast<unsigned>(dice() % 30);
            switch (dice() % 4) {
            case 0:
                faults.list.push_back(ChipFault::garbage(at, dice() % 300));
                break;
            case 1:
                faults.list.push_back(ChipFault::statusWord(at, static_cast<std::uint16_t>(dice())));
                break;
            case 2:
                faults.list.push_back(ChipFault::emptyAnswer(at));
                break;
            default:
                faults.list.push_back(ChipFault::sessionEnd(at));
            }
        }
        chip->setFaults(faults);
        const Outcome outcome = readChip(chip);
        if (outcome.passport)
            expectWhole(outcome, *chip);
    }
}

} // namespace
} // namespace kelvara
