#include "Platform/Chip/access/Bac.h"
#include "Platform/Chip/software/ChipBac.h"
#include "Platform/Chip/software/ChipMessaging.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

const MrzKey exampleKey = *MrzKey::fromText("L898902C<369080619406236");

TEST(MrzKey, TakesTextsWithRightCheckDigitsOnly)
{
    EXPECT_EQ(toHex(exampleKey.secret()), "239AB9CB282DAF66231DC5A4DF6BFBAEDF477565");
    EXPECT_EQ(MrzKey::fromFields("L898902C", "690806", "940623")->secret(), exampleKey.secret()) << "filled up";
    EXPECT_TRUE(MrzKey::fromFields("D23145890734ABC", "340712", "950712")) << "longer numbers of format TD1";
    EXPECT_EQ(MrzKey::fromText("L898902C369080619406236")->secret(), exampleKey.secret()) << "as a host has it";
    for (const char* no : { "", "L898902C<369080619406237", "L898902C<469080619406236", "L898902C<369080719406236",
             "l898902C<369080619406236", "369080619406236", "69080619406236", "L898902C<36908061940623" })
        EXPECT_FALSE(MrzKey::fromText(no)) << no;
    EXPECT_FALSE(MrzKey::fromFields("L898902C", "69080", "940623"));
    EXPECT_FALSE(MrzKey::fromFields("L8989\xC3\x87", "690806", "940623"));
}

// The worked example of ICAO Doc 9303-11 appendix D.
const char* const terminalCryptogram
    = "72C29C2371CC9BDB65B779B8E8D37B29ECC154AA56A8799FAE2F498F76ED92F25F1448EEA8AD90A7";
const char* const chipCryptogram = "46B9342A41396CD7386BF5803104D7CEDC122B9132139BAF2EEDC94EE178534F2F2D235D074D7449";

struct Read
{
    CommandApdu command;
    const char* protectedCommand;
    const char* plainAnswer; ///< Without the status word 9000.
    const char* protectedAnswer;
};

std::vector<Read> exampleReads()
{
    return {
        { { 0x00, 0xA4, 0x02, 0x0C, hex("011E"), {} }, "0CA4020C158709016375432908C044F68E08BF8B92D635FF24F800", "",
            "990290008E08FA855A5D4C50A8ED9000" },
        { { 0x00, 0xB0, 0x00, 0x00, {}, 4 }, "0CB000000D9701048E08ED6705417E96BA5500", "60145F01",
            "8709019FF0EC34F9922651990290008E08AD55CC17140B2DED9000" },
        { { 0x00, 0xB0, 0x00, 0x04, {}, 18 }, "0CB000040D9701128E082EA28A70F3C7B53500",
            "04303130365F36063034303030305C026175",
            "871901FB9235F4E4037F2327DCC8964F1F9B8C30F42C8E2FFF224A990290008E08C8B2787EAEA07D749000" },
    };
}

TEST(Bac, TheExampleOfBothSides)
{
    Bac bac(exampleKey, scripted({ hex("781723860C06C226"), hex("0B795240CB7049B01C19B33E32804F0B") }));
    ChipBac chip(exampleKey, scripted({ hex("4608F91988702212"), hex("0B4F80323EB3191CB04970CB4052790B") }));
    std::vector<std::string> air;
    run(bac, [&](const CommandApdu& command) {
        air.push_back(toHex(command.encoded()));
        const ResponseApdu response = chip.answer(command);
        air.push_back(toHex(response.encoded()));
        return response;
    });
    EXPECT_EQ(air,
        (std::vector<std::string> { "0084000008", "4608F919887022129000",
            "0082000028" + std::string(terminalCryptogram) + "28", std::string(chipCryptogram) + "9000" }));
    ASSERT_TRUE(bac.succeeded());
    auto session = bac.takeSession();
    auto keys = chip.takeSession();
    ASSERT_TRUE(session && keys);
    EXPECT_EQ(toHex(keys->encryption), "979EC13B1CBFE9DCD01AB0FED307EAE5");
    EXPECT_EQ(toHex(keys->authentication), "F1CB1F1FB5ADF208806B89DC579DC1F8");
    EXPECT_EQ(toHex(keys->sendSequenceCounter), "887022120C06C226");

    ChipMessaging messaging(*keys);
    for (const Read& read : exampleReads()) {
        const auto command = session->protect(read.command);
        ASSERT_TRUE(command);
        EXPECT_EQ(toHex(command->encoded()), read.protectedCommand);
        const auto meant = messaging.unprotect(*command);
        ASSERT_TRUE(meant);
        EXPECT_EQ(meant->encoded(), read.command.encoded());
        const ResponseApdu answer = messaging.protect({ hex(read.plainAnswer), 0x9000 });
        EXPECT_EQ(toHex(answer.encoded()), read.protectedAnswer);
        const auto plain = session->unprotect(answer);
        ASSERT_TRUE(std::holds_alternative<ResponseApdu>(plain));
        EXPECT_EQ(toHex(std::get<ResponseApdu>(plain).encoded()), std::string(read.plainAnswer) + "9000");
    }
}

TEST(Bac, TellsAWrongKeyFromNoise)
{
    const Bytes challenge = hex("4608F91988702212");
    const Bytes rightAnswer = hex(chipCryptogram);
    Bytes replayed = bac::sealed(SessionKeys::derived(CipherAlgorithm::TripleDES, exampleKey.seed()),
        joined({ challenge, challenge, Bytes(16, 7) }));
    struct Row
    {
        ResponseApdu challenge, answer;
        AccessError error;
        std::uint16_t sw;
    };
    const Row rows[] = {
        { { {}, 0x6D00 }, {}, AccessError::Unsupported, 0x6D00 },
        { { hex("46"), 0x9000 }, {}, AccessError::Protocol, 0x9000 },
        { { Bytes(9, 1), 0x9000 }, {}, AccessError::Protocol, 0x9000 },
        { { challenge, 0x9000 }, { {}, 0x6300 }, AccessError::WrongKey, 0x6300 },
        { { challenge, 0x9000 }, { {}, 0x63C2 }, AccessError::WrongKey, 0x63C2 },
        { { challenge, 0x9000 }, { {}, 0x6982 }, AccessError::WrongKey, 0x6982 },
        { { challenge, 0x9000 }, { {}, 0x6988 }, AccessError::WrongKey, 0x6988 },
        { { challenge, 0x9000 }, { {}, 0x6F00 }, AccessError::Protocol, 0x6F00 },
        { { challenge, 0x9000 }, { {}, 0x9000 }, AccessError::Protocol, 0x9000 },
        { { challenge, 0x9000 }, { Bytes(39, 1), 0x9000 }, AccessError::Protocol, 0x9000 },
        { { challenge, 0x9000 }, { replayed, 0x9000 }, AccessError::Protocol, 0x9000 },
    };
    for (const Row& row : rows) {
        Bac bac(exampleKey);
        bac.receive(row.challenge);
        bac.receive(row.answer);
        ASSERT_TRUE(bac.failure()) << std::hex << row.sw;
        EXPECT_EQ(bac.failure()->error, row.error) << std::hex << row.sw;
        EXPECT_EQ(bac.failure()->sw, row.sw);
        EXPECT_FALSE(bac.succeeded());
        EXPECT_FALSE(bac.takeSession());
    }
    for (std::size_t bit = 0; bit < 8 * rightAnswer.size(); bit += 3) {
        Bac bac(exampleKey, scripted({ hex("781723860C06C226"), hex("0B795240CB7049B01C19B33E32804F0B") }));
        bac.receive({ challenge, 0x9000 });
        Bytes answer = rightAnswer;
        answer[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        bac.receive({ answer, 0x9000 });
        ASSERT_TRUE(bac.failure()) << bit;
        EXPECT_EQ(bac.failure()->error, AccessError::WrongKey);
    }
}

TEST(Bac, AChipRefusesAnotherKeyAndASecondTryAtOneChallenge)
{
    ChipBac chip(exampleKey);
    const auto answers = [&chip](const CommandApdu& command) { return chip.answer(command); };
    Bac wrong(*MrzKey::fromFields("L898902D", "690806", "940623"));
    run(wrong, answers);
    ASSERT_TRUE(wrong.failure());
    EXPECT_EQ(wrong.failure()->error, AccessError::WrongKey);

    Bac right(exampleKey);
    right.receive(chip.answer(*right.command()));
    const CommandApdu authenticate = *right.command();
    EXPECT_TRUE(chip.answer(authenticate).isSuccess());
    EXPECT_EQ(chip.answer(authenticate).sw, 0x6985);
}

} // namespace
} // namespace kelvara::chip
