#include "Platform/Chip/access/SecurityInfos.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/ChipAuthentication.h"
#include "Platform/Chip/access/PaceSelection.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

using Kind = KeyAgreementGroup::Kind;

TEST(SecurityInfos, TheExamplesCardAccess)
{
    const Bytes file = hex("31143012060A04007F0007020204020202010202010D");
    const auto infos = SecurityInfos::parsed(file);
    ASSERT_TRUE(infos);
    ASSERT_EQ(infos->pace.size(), 1U);
    EXPECT_EQ(infos->pace[0].protocol, (PaceProtocol { Kind::ECDH, PaceMapping::Generic, CipherAlgorithm::AES128 }));
    EXPECT_EQ(infos->pace[0].parameterId, 13U);
    EXPECT_TRUE(SecurityInfos::parsed(joined({ file, Bytes(20, 0xFF) }))) << "padded";
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_FALSE(SecurityInfos::parsed(ByteView(file).first(size))) << size;
    const auto choice = choosePace(*infos);
    ASSERT_TRUE(choice);
    EXPECT_FALSE(choice->isAmbiguous);
    EXPECT_EQ(choice->group->generator(), standardizedGroup(13)->generator());
}

TEST(SecurityInfos, EveryKindOfDataGroup14)
{
    const Bytes point = standardizedGroup(12)->generator();
    const Bytes explicitKey
        = publicKeyInfo(makeTlv(0x30, joined({ hex("06072A8648CE3D0201"), hex("06082A8648CE3D030107") })), point);
    const Bytes file = makeTlv(0x6E,
        securityInfos({
            securityInfo(smartcardIdentifier({ 3, 2, 4 }), { hex("020101"), hex("020105") }),
            securityInfo(smartcardIdentifier({ 3, 1, 1 }), { hex("020101") }),
            securityInfo(smartcardIdentifier({ 1, 2 }),
                { publicKeyInfo(standardizedAlgorithm(13), standardizedGroup(13)->generator()), hex("020106") }),
            securityInfo(smartcardIdentifier({ 1, 2 }), { explicitKey, hex("020105") }),
            securityInfo(smartcardIdentifier({ 1, 1 }), { explicitKey }), // a curve is no prime field
            securityInfo(smartcardIdentifier({ 1, 2 }), { publicKeyInfo(standardizedAlgorithm(14), point) }),
            securityInfo(hex("678108010105"), { hex("020101"), hex("060A04007F00070101040104") }),
            securityInfo(hex("2A0304"), { hex("020101") }),
            securityInfo(smartcardIdentifier({ 2 }), { hex("020101") }),
        }));
    const auto infos = SecurityInfos::parsed(file);
    ASSERT_TRUE(infos);
    ASSERT_EQ(infos->chipAuthentication.size(), 2U);
    EXPECT_EQ(infos->chipAuthentication[0].cipher, CipherAlgorithm::AES256);
    EXPECT_EQ(toHex(infos->chipAuthentication[0].keyId), "05");
    EXPECT_EQ(infos->chipAuthentication[1].agreement, Kind::DH);
    ASSERT_EQ(infos->chipAuthenticationKeys.size(), 2U) << "keys beside their curve are left out";
    EXPECT_EQ(infos->chipAuthenticationKeys[1].key.element, point);
    EXPECT_EQ(toHex(infos->chipAuthenticationKeys[0].keyId), "06");
    ASSERT_TRUE(infos->activeAuthentication);
    EXPECT_EQ(infos->activeAuthentication->digest, DigestAlgorithm::SHA384);
    const auto choice = chooseChipAuthentication(*infos);
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->cipher, CipherAlgorithm::AES256);
    EXPECT_EQ(toHex(choice->keyId), "05");
    EXPECT_EQ(choice->key.element, point);
    EXPECT_EQ(toHex(choice->identifier()), "04007F000702020302" + std::string("04"));

    // The same as content of a signed file.
    const Bytes set = bytes(findTlv(file, 0x6E)->value);
    const Bytes content = makeTlv(0x30, joined({ hex("060804007F0007030201"), makeTlv(0xA0, makeTlv(0x04, set)) }));
    const Bytes signedFile = makeTlv(0x30,
        joined({ hex("06092A864886F70D010702"),
            makeTlv(0xA0, makeTlv(0x30, joined({ hex("020103"), hex("3100"), content }))) }));
    const auto fromSigned = SecurityInfos::fromCardSecurity(signedFile);
    ASSERT_TRUE(fromSigned);
    EXPECT_EQ(fromSigned->chipAuthenticationKeys.size(), 2U);

    // Damage is survived: every byte, one bit each.
    for (std::size_t at = 0; at < signedFile.size(); ++at) {
        Bytes damaged = signedFile;
        damaged[at] ^= static_cast<std::uint8_t>(1 << at % 8);
        const auto survived = SecurityInfos::fromCardSecurity(damaged);
        EXPECT_TRUE(!survived || survived->chipAuthenticationKeys.size() <= 2);
    }
    EXPECT_FALSE(SecurityInfos::parsed(securityInfos(std::vector<Bytes>(65, hex("300706032A0304 0500")))));
    EXPECT_FALSE(SecurityInfos::parsed(hex("3102 3000"))) << "an info without an identifier";
}

TEST(SecurityInfos, TheBestPaceIsChosen)
{
    const auto offer = [](std::uint8_t mapping, std::uint8_t cipher, int parameterId) {
        std::vector<Bytes> fields { hex("020102") };
        if (parameterId >= 0)
            fields.push_back(makeTlv(0x02, bigEndian(static_cast<std::uint64_t>(parameterId))));
        return securityInfo(smartcardIdentifier({ 4, mapping, cipher }), fields);
    };
    const Bytes ownCurve = securityInfo(smartcardIdentifier({ 4, 2 }), { standardizedAlgorithm(14), hex("020121") });
    const Bytes oldVersion = securityInfo(smartcardIdentifier({ 4, 2, 4 }), { hex("020101"), hex("02010D") });
    struct Row
    {
        std::vector<Bytes> infos;
        const char* identifier; ///< Its last two arcs; empty for no choice.
        unsigned parameterId;
        bool isAmbiguous;
    };
    const Row rows[] = {
        { { offer(2, 1, 13), offer(2, 4, 13), offer(4, 4, 13) }, "0204", 13, false },
        { { offer(1, 4, 2), offer(2, 1, 12) }, "0201", 12, true },
        { { offer(4, 2, 13), offer(2, 2, 13), offer(6, 2, 13) }, "0602", 13, false },
        { { offer(4, 2, 10), offer(2, 1, 13) }, "0201", 13, true },
        { { offer(2, 2, 33), ownCurve }, "0202", 33, false },
        { { offer(2, 2, 34), ownCurve }, "", 0, false },
        { { offer(2, 2, 5) }, "", 0, false },
        { { offer(2, 2, 0) }, "", 0, false }, // a prime field is no curve
        { { offer(2, 2, -1) }, "", 0, false },
        { { offer(6, 1, 13) }, "", 0, false },
        { { offer(5, 2, 13), offer(2, 5, 13), offer(2, 0, 13) }, "", 0, false },
        { { oldVersion }, "", 0, false },
        { {}, "", 0, false },
    };
    for (const Row& row : rows) {
        const auto infos = SecurityInfos::parsed(securityInfos(row.infos));
        ASSERT_TRUE(infos);
        const auto choice = choosePace(*infos);
        ASSERT_EQ(choice.has_value(), *row.identifier != 0) << row.infos.size();
        if (!choice)
            continue;
        EXPECT_EQ(toHex(ByteView(choice->protocol.identifier()).last(2)), row.identifier);
        EXPECT_EQ(choice->parameterId, row.parameterId);
        EXPECT_EQ(choice->isAmbiguous, row.isAmbiguous);
    }
}

} // namespace
} // namespace kelvara::chip
