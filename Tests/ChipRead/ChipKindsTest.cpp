#include "Reader.h"

#include "Tools/Evaluate/ChipCombinations.h"

namespace kelvara {
namespace {

constexpr std::size_t kShards = 4;
/// Sanitizers look for other faults than wrong combinations, and take their time.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kStride = 9;
#else
constexpr std::size_t kStride = 1;
#endif

class EveryKindOfChip : public testing::TestWithParam<std::size_t>
{ };

/// Every pair of a way in, a chip authentication and an active authentication: each way in is read with each chip
/// authentication, and the active authentications take turns.
TEST_P(EveryKindOfChip, IsRead)
{
    const auto access = evaluate::accessTraits();
    const auto chipAuthentication = evaluate::chipAuthenticationKinds();
    const auto activeAuthentication = evaluate::activeAuthenticationKinds();
    ASSERT_EQ(access.size(), 143U);
    for (std::size_t i = GetParam(); i < access.size(); i += kShards * kStride) {
        for (std::size_t j = 0; j < chipAuthentication.size() && !HasFailure(); ++j) {
            const auto& ca = chipAuthentication[j];
            const auto& aa = activeAuthentication[(i + j) % activeAuthentication.size()];
            SCOPED_TRACE(access[i].name + ", " + ca.name + ", " + aa.name);
            ChipProfile profile = plainProfile();
            access[i].apply(profile);
            ca.apply(profile);
            aa.apply(profile);
            const auto chip = makeChip(profile);
            ASSERT_TRUE(chip);
            const Outcome outcome = readChip(chip);
            expectWhole(outcome, *chip);
            if (HasFailure())
                break;
            const auto& verification = outcome.passport->verification;
            const bool isPace = access[i].name.starts_with("PACE");
            const bool isMapped = access[i].name.starts_with("PACE-CAM");
            EXPECT_EQ(verification.pace, isPace ? ProtocolOutcome::Succeeded : ProtocolOutcome::NotOffered);
            EXPECT_EQ(verification.bac == ProtocolOutcome::Succeeded, access[i].name == "BAC");
            EXPECT_EQ(verification.chipAuthentication == ProtocolOutcome::Succeeded, isMapped || ca.name != "no CA");
            EXPECT_EQ(verification.isChipAuthenticatedByPace, isMapped);
            EXPECT_EQ(verification.activeAuthentication == ProtocolOutcome::Succeeded, aa.name != "no AA");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryKindOfChip, testing::Range(std::size_t { 0 }, kShards));

TEST(KindsOfChip, LearnsHowMuchAChipGivesAtOnce)
{
    struct Row
    {
        const char* name;
        std::uint32_t longest;
        std::uint16_t answer;
        std::uint16_t atEnd;
        bool endsSession;
    };
    for (const Row& row :
        { Row { "gives less", 128, 0x9000, 0x6282, false }, Row { "names the length", 160, 0x6C00, 0x6282, false },
            Row { "wrong length", 200, 0x6700, 0x9000, false }, Row { "not over the end", 2048, 0x6700, 0x6B00, false },
            Row { "ends the session", 231, 0x6700, 0x6282, true },
            Row { "ends it at the end too", 4096, 0x6B00, 0x6B00, true } }) {
        SCOPED_TRACE(row.name);
        ChipProfile profile = plainProfile();
        profile.reading = { row.longest, row.answer, row.atEnd, true, true };
        profile.faults.refusedReadEndsSession = row.endsSession;
        const auto chip = makeChip(profile);
        expectWhole(readChip(chip), *chip);
    }
}

TEST(KindsOfChip, ReadsLargeFilesPast32Kilobytes)
{
    ChipProfile profile = plainProfile();
    chip::Bytes large(70'000, 0x5A);
    profile.files[DataGroupId::DG13] = chip::makeTlv(0x6D, chip::makeTlv(0x04, large));
    const auto chip = makeChip(profile);
    expectWhole(readChip(chip), *chip);
}

} // namespace
} // namespace kelvara
