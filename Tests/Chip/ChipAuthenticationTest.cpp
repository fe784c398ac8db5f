#include "Platform/Chip/access/ChipAuthentication.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/software/ChipKeyAgreement.h"
#include "Platform/Chip/software/ChipMessaging.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

ChipKeyAgreement::Key makeKey(unsigned parameterId, CipherAlgorithm cipher, const Bytes& keyId = {})
{
    GroupPointer group = standardizedGroup(parameterId);
    auto pair = group->generateKeyPair(group->generator(), secureRandom());
    return { { { group, pair->publicKey }, cipher, keyId }, pair->privateKey };
}

/// Whether a message gets through what both sides agreed.
bool talks(AccessProtocol& terminal, ChipKeyAgreement& chip)
{
    auto session = terminal.takeSession();
    auto keys = chip.takeSession();
    if (!session || !keys)
        return false;
    ChipMessaging messaging(*keys);
    return messaging.unprotect(*session->protect({ 0x00, 0xB0, 0x9D, 0x00, {}, 8 })).has_value();
}

TEST(ChipAuthentication, GroupsAndCiphersThroughTheSessionBefore)
{
    const Bytes before = bytes("a secret of PACE");
    for (const unsigned id : { 0U, 2U, 11U, 13U, 18U }) {
        for (int cipher = 0; cipher < 4; ++cipher) {
            for (const Bytes& keyId : { Bytes {}, hex("0103") }) {
                SCOPED_TRACE(testing::Message() << id << ' ' << cipher << ' ' << keyId.size());
                const auto key = makeKey(id, static_cast<CipherAlgorithm>(cipher), keyId);
                ChipKeyAgreement chip({ makeKey(8, CipherAlgorithm::AES128, hex("01")), key });
                SecureMessaging terminalSide(SessionKeys::derived(CipherAlgorithm::AES128, before));
                ChipMessaging chipSide(SessionKeys::derived(CipherAlgorithm::AES128, before));
                ChipAuthentication authentication(key.announced);
                int commands = 0;
                while (authentication.command()) {
                    ASSERT_LT(++commands, 3);
                    EXPECT_TRUE(chip.isFor(*authentication.command()));
                    const auto air = CommandApdu::decoded(terminalSide.protect(*authentication.command())->encoded());
                    const ResponseApdu answer = chipSide.protect(chip.answer(*chipSide.unprotect(*air)));
                    authentication.receive(std::get<ResponseApdu>(terminalSide.unprotect(answer)));
                }
                EXPECT_EQ(commands, cipher == 0 ? 1 : 2);
                ASSERT_TRUE(authentication.succeeded());
                EXPECT_TRUE(talks(authentication, chip));
            }
        }
    }
}

TEST(ChipAuthentication, ACloneCannotGoOnAndARefusalIsTold)
{
    for (const CipherAlgorithm cipher : { CipherAlgorithm::TripleDES, CipherAlgorithm::AES128 }) {
        const auto genuine = makeKey(13, cipher);
        auto clone = genuine; // knows what is public
        clone.privateKey = makeKey(13, cipher).privateKey;
        ChipKeyAgreement chip({ clone });
        ChipAuthentication authentication(genuine.announced);
        run(authentication, [&chip](const CommandApdu& command) { return chip.answer(command); });
        EXPECT_TRUE(authentication.succeeded());
        EXPECT_FALSE(talks(authentication, chip));

        ChipKeyAgreement other({ makeKey(13, cipher, hex("07")) });
        ChipAuthentication refused(genuine.announced);
        run(refused, [&other](const CommandApdu& command) { return other.answer(command); });
        ASSERT_TRUE(refused.failure());
        EXPECT_EQ(refused.failure()->error, AccessError::Unsupported);
        ChipAuthentication broken(genuine.announced);
        broken.receive({ {}, 0x6F00 });
        EXPECT_EQ(broken.failure()->error, AccessError::Protocol);
    }
}

TEST(ChipAuthentication, WithoutInfosAKeyIsUsedAsTheFirstChipsMeantIt)
{
    const auto key = makeKey(12, CipherAlgorithm::TripleDES);
    const Bytes info = securityInfo(
        smartcardIdentifier({ 1, 2 }), { publicKeyInfo(standardizedAlgorithm(12), key.announced.key.element) });
    const auto choice = chooseChipAuthentication(*SecurityInfos::parsed(securityInfos({ info })));
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->cipher, CipherAlgorithm::TripleDES);
    const Bytes forPrimeFields = securityInfo(smartcardIdentifier({ 3, 1, 2 }), { hex("020101") });
    EXPECT_FALSE(chooseChipAuthentication(*SecurityInfos::parsed(securityInfos({ info, forPrimeFields }))));
    EXPECT_FALSE(chooseChipAuthentication({}));

    // A DH key stands as a number in the bit string, X9.42 parameters around it.
    const auto dh = makeKey(1, CipherAlgorithm::AES128);
    const Bytes dhInfo = securityInfo(smartcardIdentifier({ 1, 1 }),
        { publicKeyInfo(standardizedAlgorithm(1), makeTlv(0x02, joined({ hex("00"), dh.announced.key.element }))) });
    const auto dhInfos = SecurityInfos::parsed(securityInfos({ dhInfo, forPrimeFields }));
    ASSERT_EQ(dhInfos->chipAuthenticationKeys.size(), 1U);
    EXPECT_EQ(dhInfos->chipAuthenticationKeys[0].key.element, dh.announced.key.element);
    EXPECT_EQ(chooseChipAuthentication(*dhInfos)->cipher, CipherAlgorithm::AES128);
}

} // namespace
} // namespace kelvara::chip
