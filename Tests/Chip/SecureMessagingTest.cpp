#include "Platform/Chip/messaging/SecureMessaging.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/software/ChipMessaging.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

const Bytes secret = *fromHex("28768D20701247DAE81804C9E780EDE582A9996DB4A315020B2733197DB84925");

struct AesRow
{
    CipherAlgorithm cipher;
    const char* select;
    const char* selected;
    const char* read;
    const char* answer;
};

// Reckoned with another library (Python's cryptography): there are no published examples of these lengths.
const AesRow aesRows[] = {
    { CipherAlgorithm::AES128, "0CA4040C1D871101752F676B09FAC86A87D632749A49C7CC8E08C18BA1FCE707BD9F00",
        "990290008E08BEA7B381C494A0799000",
        "0CB100020000208510E29620A791052A0F064EDA522B17731B970202008E08C2F2D0B5E95F01050000",
        "85101D0B552A4A96545B5B8492A691A70F3B990262828E083B00D55EC11A48296282" },
    { CipherAlgorithm::AES192, "0CA4040C1D871101B5E01A6809BDE6581CB3962B9886116F8E0846153337FA24A98100",
        "990290008E085EDBF6885A5A48A19000",
        "0CB1000200002085102C1136A7CA506CA04FDF9D75766FAC85970202008E082395DD36584431610000",
        "851091CC2E835C0F0C666BCE628F58086B2F990262828E0856FD8A822F89D1866282" },
    { CipherAlgorithm::AES256, "0CA4040C1D871101C7AC663515D5845CE6CC064BDB01E0F18E089FD0F9C4F143BC9000",
        "990290008E08E2FF9E39494C262F9000",
        "0CB10002000020851074A104B9F34F2478EFEDB29E520E1929970202008E086EEC25EE0FFDCEDF0000",
        "85104976223691A3FEAAA8DEA0562CCE84A3990262828E080F673BD2FD030C906282" },
};

TEST(SecureMessaging, AesWithEvenAndOddInstructionsAndExtendedLength)
{
    const CommandApdu select { 0x00, 0xA4, 0x04, 0x0C, *fromHex("A0000002471001"), {} };
    const CommandApdu read { 0x00, 0xB1, 0x00, 0x02, *fromHex("5403018000"), 512 };
    for (const AesRow& row : aesRows) {
        SecureMessaging terminal(SessionKeys::derived(row.cipher, secret));
        ChipMessaging chip(SessionKeys::derived(row.cipher, secret));
        auto command = terminal.protect(select);
        EXPECT_EQ(toHex(command->encoded()), row.select);
        EXPECT_EQ(chip.unprotect(*command)->encoded(), select.encoded());
        ResponseApdu answer = chip.protect({ {}, 0x9000 });
        EXPECT_EQ(toHex(answer.encoded()), row.selected);
        EXPECT_EQ(std::get<ResponseApdu>(terminal.unprotect(answer)).sw, 0x9000);

        command = terminal.protect(read);
        EXPECT_EQ(toHex(command->encoded()), row.read);
        EXPECT_EQ(chip.unprotect(*command)->encoded(), read.encoded());
        answer = chip.protect({ hex("5305AABBCCDDEE"), 0x6282 });
        EXPECT_EQ(toHex(answer.encoded()), row.answer);
        EXPECT_EQ(toHex(std::get<ResponseApdu>(terminal.unprotect(answer)).encoded()), "5305AABBCCDDEE6282");
    }
}

TEST(SecureMessaging, ManyMessagesOfAllSizesBothWays)
{
    for (int cipher = 0; cipher < 4; ++cipher) {
        SecureMessaging terminal(SessionKeys::derived(static_cast<CipherAlgorithm>(cipher), secret));
        ChipMessaging chip(SessionKeys::derived(static_cast<CipherAlgorithm>(cipher), secret));
        for (std::size_t size = 0; size < 300; ++size) { // counts past a byte of the counter
            const CommandApdu command { 0x00, static_cast<std::uint8_t>(0xD6 + size % 2), 0, 0, Bytes(size, 0x80),
                size % 3 == 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(size % 3 == 1 ? 256 : 65536)) };
            const auto air = CommandApdu::decoded(terminal.protect(command)->encoded());
            const auto meant = chip.unprotect(*air);
            ASSERT_TRUE(meant) << size;
            EXPECT_EQ(meant->encoded(), command.encoded());
            const Bytes said(300 - size, 0);
            const auto plain = terminal.unprotect(*ResponseApdu::decoded(chip.protect({ said, 0x9000 }).encoded()));
            ASSERT_TRUE(std::holds_alternative<ResponseApdu>(plain)) << size;
            EXPECT_EQ(std::get<ResponseApdu>(plain).data, said);
        }
        // What is said to fit a short response does, and not a byte more.
        const std::size_t greatest = terminal.greatestShortResponse();
        for (const std::size_t size : { greatest, greatest + 1 }) {
            const CommandApdu read { 0, 0xB0, 0, 0, {}, 256 };
            ASSERT_TRUE(chip.unprotect(*terminal.protect(read)));
            const ResponseApdu answer = chip.protect({ Bytes(size, 1), 0x9000 });
            EXPECT_EQ(answer.data.size() <= 256, size == greatest);
            EXPECT_EQ(std::get<ResponseApdu>(terminal.unprotect(answer)).data.size(), size);
        }
    }
}

MessagingFailure failureOf(CipherAlgorithm cipher, const Bytes& objects, std::uint16_t sw, bool isThenOver = true)
{
    SecureMessaging terminal(SessionKeys::derived(cipher, secret));
    EXPECT_TRUE(terminal.protect({ 0, 0xB0, 0, 0, {}, 16 }));
    const auto result = terminal.unprotect({ objects, sw });
    EXPECT_TRUE(std::holds_alternative<MessagingFailure>(result)) << toHex(objects);
    EXPECT_EQ(terminal.isOver(), isThenOver);
    EXPECT_FALSE(terminal.protect({ 0, 0xB0, 0, 0, {}, 16 }));
    return std::get<MessagingFailure>(result);
}

TEST(SecureMessaging, EveryChangedByteEndsTheSession)
{
    for (const CipherAlgorithm cipher : { CipherAlgorithm::TripleDES, CipherAlgorithm::AES256 }) {
        ChipMessaging chip(SessionKeys::derived(cipher, secret));
        SecureMessaging other(SessionKeys::derived(cipher, secret));
        ASSERT_TRUE(chip.unprotect(*other.protect({ 0, 0xB0, 0, 0, {}, 16 })));
        const Bytes right = chip.protect({ bytes("sixteen bytes !!"), 0x9000 }).data;
        for (std::size_t at = 0; at < right.size(); ++at) {
            Bytes changed = right;
            changed[at] ^= static_cast<std::uint8_t>(1 << at % 8);
            EXPECT_EQ(failureOf(cipher, changed, 0x9000).error, MessagingError::BadChecksum) << at;
            const Bytes cut = bytes(ByteView(right).first(at));
            EXPECT_EQ(failureOf(cipher, cut, 0x9000).error,
                at == 0 ? MessagingError::Unprotected : MessagingError::BadChecksum);
        }
        EXPECT_EQ(failureOf(cipher, joined({ right, hex("00") }), 0x9000).error, MessagingError::BadChecksum);
    }
    EXPECT_EQ(failureOf(CipherAlgorithm::AES128, {}, 0x6988).sw, 0x6988) << "the chip's own reason";
}

TEST(SecureMessaging, WhatIsAuthenticButNoResponseIsRefused)
{
    for (const char* objects :
        { "", "99039000 00", "9902 9000 9902 9000", "87 01 01 9902 9000", "87 09 02 0011223344556677 9902 9000",
            "87 03 01 00 00 9902 9000", "85 08 0011223344556677", "97 01 10 9902 9000", "99 02 90",
            "53 01 00 9902 9000", "87 11 01 00112233445566770011223344556677 9902 9000" }) {
        SessionKeys keys = SessionKeys::derived(CipherAlgorithm::TripleDES, secret);
        keys.countUp();
        keys.countUp();
        const Bytes covered = hex(objects);
        const Bytes message = joined({ covered, makeTlv(0x8E, keys.checksum({}, covered)) });
        EXPECT_EQ(failureOf(CipherAlgorithm::TripleDES, message, 0x9000).error, MessagingError::Malformed) << objects;
    }
}

TEST(SecureMessaging, ReplaysAndAnswersToNothingEndTheSession)
{
    SecureMessaging terminal(SessionKeys::derived(CipherAlgorithm::AES128, secret));
    ChipMessaging chip(SessionKeys::derived(CipherAlgorithm::AES128, secret));
    const CommandApdu read { 0, 0xB0, 0, 0, {}, 16 };
    const auto first = terminal.protect(read);
    ASSERT_TRUE(chip.unprotect(*first));
    const ResponseApdu answer = chip.protect({ bytes("one"), 0x9000 });
    ASSERT_TRUE(std::holds_alternative<ResponseApdu>(terminal.unprotect(answer)));
    ASSERT_TRUE(terminal.protect(read));
    EXPECT_FALSE(terminal.protect(read)) << "an answer is due";
    EXPECT_EQ(std::get<MessagingFailure>(terminal.unprotect(answer)).error, MessagingError::BadChecksum);
    EXPECT_EQ(std::get<MessagingFailure>(terminal.unprotect(answer)).error, MessagingError::SessionOver);
    EXPECT_FALSE(chip.unprotect(*first)) << "a command said twice";
    EXPECT_TRUE(chip.isOver());

    SecureMessaging silent(SessionKeys::derived(CipherAlgorithm::AES128, secret));
    EXPECT_EQ(std::get<MessagingFailure>(silent.unprotect(answer)).error, MessagingError::SessionOver);
}

} // namespace
} // namespace kelvara::chip
