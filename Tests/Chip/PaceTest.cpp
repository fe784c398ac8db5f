#include "Platform/Chip/access/Pace.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "Platform/Chip/software/ChipMessaging.h"
#include "Platform/Chip/software/ChipPace.h"
#include "ProtocolRun.h"

#include <random>

namespace kelvara::chip {
namespace {

using Kind = KeyAgreementGroup::Kind;

const PacePassword password = PacePassword::fromMrz(*MrzKey::fromText("T22000129364081251010318"));

/// Repeatable, so that a failure can be looked at.
RandomSource seeded(unsigned seed)
{
    return [engine = std::mt19937(seed)](std::size_t count) mutable {
        Bytes drawn(count);
        for (std::uint8_t& byte : drawn)
            byte = static_cast<std::uint8_t>(engine());
        return drawn;
    };
}

PaceSelection selection(PaceMapping mapping, unsigned parameterId, CipherAlgorithm cipher)
{
    GroupPointer group = standardizedGroup(parameterId);
    return { { group->kind(), mapping, cipher }, group, parameterId, false };
}

struct Outcome
{
    std::optional<AccessFailure> failure;
    std::optional<SecureMessaging> terminal;
    std::optional<SessionKeys> chip;
    bool isProven = false;
};

using Change = std::function<void(std::size_t step, Bytes& response)>;

/// A whole run between both sides; `change` meddles with what the chip says.
Outcome converse(const PaceSelection& selection, const PacePassword& typed, const Change& change = {})
{
    const auto staticKey = *selection.group->generateKeyPair(selection.group->generator(), seeded(3));
    ChipPace chip({ selection }, { password }, staticKey, seeded(1));
    Pace pace(selection, typed, seeded(2));
    for (std::size_t step = 0; pace.command() && step < 9; ++step) {
        const auto command = CommandApdu::decoded(pace.command()->encoded());
        Bytes response = chip.answer(*command).encoded();
        if (change)
            change(step, response);
        pace.receive(ResponseApdu::decoded(response).value_or(ResponseApdu {}));
    }
    Outcome outcome { pace.failure(), pace.takeSession(), chip.takeSession(), false };
    if (pace.chipAuthentication()) {
        SecurityInfos cardSecurity;
        cardSecurity.chipAuthenticationKeys.push_back({ { selection.group, staticKey.publicKey }, {} });
        outcome.isProven = pace.chipAuthentication()->isProvenBy(cardSecurity);
    }
    return outcome;
}

TEST(Pace, EveryMappingGroupAndCipher)
{
    constexpr unsigned p224 = 10; // has no integrated mapping
    int runs = 0;
    for (const PaceMapping mapping :
        { PaceMapping::Generic, PaceMapping::Integrated, PaceMapping::ChipAuthentication }) {
        const bool provesChip = mapping == PaceMapping::ChipAuthentication;
        for (const unsigned id : { 0U, 1U, 2U, 8U, 9U, 10U, 11U, 12U, 13U, 14U, 15U, 16U, 17U, 18U }) {
            if ((provesChip && id < 8) || (mapping == PaceMapping::Integrated && id == p224))
                continue;
            for (int cipher = provesChip ? 1 : 0; cipher < 4; ++cipher) { // that mapping exists with AES only
                SCOPED_TRACE(testing::Message() << static_cast<int>(mapping) << ' ' << id << ' ' << cipher);
                Outcome outcome = converse(selection(mapping, id, static_cast<CipherAlgorithm>(cipher)), password);
                ASSERT_TRUE(outcome.terminal && outcome.chip && !outcome.failure);
                EXPECT_EQ(outcome.isProven, provesChip);
                ChipMessaging chip(*outcome.chip);
                const CommandApdu read { 0x00, 0xB0, 0x81, 0x00, {}, 100 };
                const auto meant = chip.unprotect(*outcome.terminal->protect(read));
                ASSERT_TRUE(meant);
                EXPECT_EQ(meant->encoded(), read.encoded());
                ++runs;
            }
        }
    }
    EXPECT_EQ(runs, 14 * 4 + 13 * 4 + 11 * 3);
}

TEST(Pace, AWrongPasswordIsToldByTheLastStep)
{
    for (const PaceMapping mapping :
        { PaceMapping::Generic, PaceMapping::Integrated, PaceMapping::ChipAuthentication }) {
        for (const unsigned id : { 0U, 13U }) {
            if (id == 0 && mapping == PaceMapping::ChipAuthentication)
                continue;
            const Outcome outcome = converse(
                selection(mapping, id, CipherAlgorithm::AES256), { password.reference, bytes("another secret") });
            ASSERT_TRUE(outcome.failure);
            EXPECT_EQ(outcome.failure->error, AccessError::WrongKey);
            EXPECT_EQ(outcome.failure->sw, 0x6300);
            EXPECT_FALSE(outcome.terminal || outcome.chip);
        }
    }
}

TEST(Pace, NoChangedAnswerIsTaken)
{
    for (const PaceMapping mapping :
        { PaceMapping::Generic, PaceMapping::Integrated, PaceMapping::ChipAuthentication }) {
        const PaceSelection way = selection(mapping, 13, CipherAlgorithm::AES128);
        std::vector<std::size_t> sizes;
        converse(way, password, [&sizes](std::size_t, const Bytes& response) { sizes.push_back(response.size()); });
        ASSERT_EQ(sizes.size(), 5U);
        for (std::size_t step = 0; step < sizes.size(); ++step) {
            for (std::size_t at = 0; at < sizes[step]; at += 1 + at % 2) {
                for (const bool cut : { false, true }) {
                    const Outcome outcome = converse(way, password, [&](std::size_t now, Bytes& response) {
                        if (now != step)
                            return;
                        if (cut) { // the status word stays
                            if (at + 2 < response.size())
                                response.erase(response.begin() + static_cast<std::ptrdiff_t>(at), response.end() - 2);
                        } else {
                            response[at] ^= static_cast<std::uint8_t>(1 << (at + step) % 8);
                        }
                    });
                    const bool isUnchanged = cut && at + 2 >= sizes[step];
                    // The integrated mapping's answer says nothing; a chip may leave its object out.
                    const bool saysNothing = mapping == PaceMapping::Integrated && step == 2;
                    if (isUnchanged || (saysNothing && !outcome.failure))
                        continue;
                    EXPECT_TRUE(outcome.failure || (mapping == PaceMapping::ChipAuthentication && !outcome.isProven))
                        << step << ' ' << at << ' ' << cut;
                    EXPECT_TRUE(outcome.failure.has_value() != outcome.terminal.has_value());
                }
            }
        }
    }
}

TEST(Pace, NoiseNeverOpens)
{
    auto noise = seeded(7);
    for (unsigned id : { 0U, 13U }) {
        for (std::size_t round = 0; round < 60; ++round) {
            const std::size_t from = 1 + round % 4;
            const Outcome outcome = converse(selection(PaceMapping::Generic, id, CipherAlgorithm::TripleDES), password,
                [&](std::size_t step, Bytes& response) {
                    if (step != from)
                        return;
                    Bytes inner = noise(noise(1)[0]);
                    if (round % 2 == 0) // within the frame that is expected
                        inner = pace::wrapped(0x80 + 2 * static_cast<std::uint32_t>(from - 1), inner);
                    response = joined({ inner, hex("9000") });
                });
            ASSERT_TRUE(outcome.failure) << id << ' ' << round;
            EXPECT_FALSE(outcome.terminal);
        }
    }
}

TEST(Pace, ForeignValuesThatWouldGiveTheKeysAwayAreRefused)
{
    for (const unsigned id : { 0U, 12U }) {
        const PaceSelection way = selection(PaceMapping::Generic, id, CipherAlgorithm::AES128);
        for (const std::size_t step : { 2U, 3U }) {
            for (const bool echo : { true, false }) {
                Pace pace(way, password);
                ChipPace chip({ way }, { password });
                for (std::size_t now = 0; now < step; ++now)
                    pace.receive(chip.answer(*pace.command()));
                const auto tag = static_cast<std::uint32_t>(step == 2 ? pace::terminalMapping : pace::terminalKey);
                const auto own = pace::unwrapped(pace.command()->data, tag);
                const Bytes foreign = echo ? bytes(*own) : Bytes(own->size(), 0);
                pace.receive({ pace::wrapped(tag + 1, foreign), 0x9000 });
                ASSERT_TRUE(pace.failure());
                EXPECT_EQ(pace.failure()->error, AccessError::Protocol);
            }
        }
    }
}

TEST(Pace, AuthenticationDataAreNothingElse)
{
    const Bytes right = pace::wrapped(pace::chipKey, bytes("value"));
    EXPECT_EQ(bytes(*pace::unwrapped(right, pace::chipKey)), bytes("value"));
    EXPECT_FALSE(pace::unwrapped(right, pace::chipToken));
    EXPECT_FALSE(pace::unwrapped(joined({ right, right }), pace::chipKey));
    EXPECT_FALSE(pace::unwrapped(makeTlv(pace::chipKey, bytes("value")), pace::chipKey));
    EXPECT_FALSE(pace::unwrapped(makeTlv(pace::authenticationData, hex("8403 0102")), pace::chipKey));
}

TEST(Pace, StatusWordsByStep)
{
    struct Row
    {
        std::size_t step;
        std::uint16_t sw;
        AccessError error;
    };
    const Row rows[] = {
        { 0, 0x6A80, AccessError::Unsupported },
        { 0, 0x6A88, AccessError::Unsupported },
        { 0, 0x6D00, AccessError::Unsupported },
        { 0, 0x63C0, AccessError::Unsupported },
        { 1, 0x6982, AccessError::Protocol },
        { 2, 0x6F00, AccessError::Protocol },
        { 4, 0x6300, AccessError::WrongKey },
        { 4, 0x63C1, AccessError::WrongKey },
        { 4, 0x6982, AccessError::WrongKey },
        { 4, 0x6988, AccessError::WrongKey },
        { 4, 0x6A80, AccessError::Protocol },
    };
    for (const Row& row : rows) {
        const Outcome outcome = converse(selection(PaceMapping::Generic, 13, CipherAlgorithm::AES128), password,
            [&row](std::size_t step, Bytes& response) {
                if (step == row.step)
                    response = bigEndian(row.sw);
            });
        ASSERT_TRUE(outcome.failure) << std::hex << row.sw;
        EXPECT_EQ(outcome.failure->error, row.error) << row.step << ' ' << std::hex << row.sw;
        EXPECT_EQ(outcome.failure->sw, row.sw);
    }
    const Outcome warned = converse(
        selection(PaceMapping::Generic, 13, CipherAlgorithm::AES128), password, [](std::size_t step, Bytes& response) {
            if (step == 0)
                response = hex("63C2");
        });
    EXPECT_TRUE(warned.terminal) << "tries that are left are no failure";
}

TEST(Pace, NamesTheDomainParametersOnlyWhereThereAreSeveral)
{
    PaceSelection way = selection(PaceMapping::Generic, 13, CipherAlgorithm::AES128);
    EXPECT_FALSE(findTlv(Pace(way, password).command()->data, 0x84));
    EXPECT_FALSE(Pace(way, password).command()->le);
    way.isAmbiguous = true;
    const Pace named(way, password);
    ASSERT_TRUE(findTlv(named.command()->data, 0x84));
    EXPECT_EQ(toHex(findTlv(named.command()->data, 0x84)->value), "0D");
    PaceSelection other = selection(PaceMapping::Generic, 12, CipherAlgorithm::AES128);
    other.isAmbiguous = true;
    ChipPace chip({ other }, { password });
    EXPECT_EQ(chip.answer(*named.command()).sw, 0x6A88);
}

} // namespace
} // namespace kelvara::chip
