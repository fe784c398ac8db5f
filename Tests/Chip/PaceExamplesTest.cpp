#include "PaceExamples.h"
#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/access/Pace.h"
#include "Platform/Chip/access/PaceCalculation.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

class PaceExamplesTest : public testing::TestWithParam<PaceExample>
{
protected:
    GroupPointer m_group = standardizedGroup(GetParam().parameterId);
};

INSTANTIATE_TEST_SUITE_P(Doc9303, PaceExamplesTest, testing::ValuesIn(paceExamples()),
    [](const testing::TestParamInfo<PaceExample>& row) { return std::string(row.param.name); });

TEST_P(PaceExamplesTest, EveryStepsValue)
{
    const PaceExample& example = GetParam();
    const CipherAlgorithm cipher = example.protocol.cipher;
    const Bytes secret = hex(example.terminalMappingSecret);
    Bytes key = hex(example.passwordKey);
    if (*example.mrz) {
        const Bytes derived = pace::passwordKey(cipher, MrzKey::fromText(example.mrz)->secret());
        EXPECT_TRUE(key.empty() || key == derived);
        key = derived;
    }
    if (!key.empty()) {
        EXPECT_EQ(toHex(*pace::decryptedNonce(example.protocol, key, hex(example.encryptedNonce))), example.nonce);
    }
    if (*example.pseudoRandomNumber) {
        EXPECT_EQ(toHex(*pace::pseudoRandomNumber(cipher, hex(example.nonce), secret, m_group->fieldBits())),
            example.pseudoRandomNumber);
    }
    if (*example.chipMappingSecret) { // both sides come to one generator
        EXPECT_EQ(toHex(*m_group->power(m_group->generator(), hex(example.chipMappingSecret))), example.chipMappingKey);
        EXPECT_EQ(toHex(*pace::genericGenerator(
                      *m_group, hex(example.nonce), hex(example.chipMappingSecret), hex(example.terminalMappingKey))),
            example.generator);
    }
    std::optional<Bytes> generator;
    if (example.protocol.mapping == PaceMapping::Integrated) {
        generator = pace::integratedGenerator(*m_group, cipher, hex(example.nonce), secret);
    } else {
        EXPECT_EQ(toHex(*m_group->power(m_group->generator(), secret)), example.terminalMappingKey);
        generator = pace::genericGenerator(*m_group, hex(example.nonce), secret, hex(example.chipMappingKey));
    }
    ASSERT_TRUE(generator);
    EXPECT_EQ(toHex(*generator), example.generator);
    EXPECT_EQ(toHex(*m_group->power(*generator, hex(example.terminalSecret))), example.terminalKey);
    const auto agreed = m_group->power(hex(example.chipKey), hex(example.terminalSecret));
    const auto keys = pace::session(*m_group, cipher, *agreed);
    EXPECT_EQ(toHex(keys->encryption), example.encryption);
    EXPECT_EQ(toHex(keys->authentication), example.authentication);
    EXPECT_EQ(toHex(pace::authenticationToken(*keys, example.protocol, hex(example.chipKey))), example.terminalToken);
    EXPECT_EQ(toHex(pace::authenticationToken(*keys, example.protocol, hex(example.terminalKey))), example.chipToken);
}

TEST_P(PaceExamplesTest, TheTerminalsConversation)
{
    const PaceExample& example = GetParam();
    const PacePassword password { 1, *example.mrz ? MrzKey::fromText(example.mrz)->secret() : bytes("any other") };
    // The integrated examples' nonces are encrypted with keys of their own: encrypt them with ours.
    const Bytes nonce = encryptCBC(
        example.protocol.cipher, pace::passwordKey(example.protocol.cipher, password.secret), {}, hex(example.nonce));
    if (*example.mrz) {
        EXPECT_EQ(toHex(nonce), example.encryptedNonce);
    }
    const bool isIntegrated = example.protocol.mapping == PaceMapping::Integrated;

    std::vector<Bytes> received;
    Bytes last = makeTlv(pace::chipToken, hex(example.chipToken));
    if (*example.chipAuthenticationCryptogram)
        last = joined({ last, makeTlv(pace::chipAuthenticationData, hex(example.chipAuthenticationCryptogram)) });
    const std::vector<Bytes> answers { {}, pace::wrapped(pace::encryptedNonce, nonce),
        pace::wrapped(pace::chipMapping, hex(example.chipMappingKey)),
        pace::wrapped(pace::chipKey, hex(example.chipKey)), makeTlv(pace::authenticationData, last) };
    Pace pace({ example.protocol, m_group, example.parameterId, false }, password,
        scripted({ hex(example.terminalMappingSecret), hex(example.terminalSecret) }));
    run(pace, [&](const CommandApdu& command) {
        received.push_back(command.encoded());
        return ResponseApdu { answers.at(received.size() - 1), 0x9000 };
    });
    ASSERT_TRUE(pace.succeeded());
    EXPECT_TRUE(pace.takeSession());
    EXPECT_FALSE(pace.takeSession()) << "a session is handed out once";

    ASSERT_EQ(received.size(), 5U);
    EXPECT_EQ(toHex(received[0]), "0022C1A40F800A" + toHex(example.protocol.identifier()) + "830101");
    EXPECT_EQ(toHex(received[1]), "10860000027C0000");
    const auto data = [&received](std::size_t step) { return CommandApdu::decoded(received[step])->data; };
    EXPECT_EQ(toHex(data(2)),
        toHex(pace::wrapped(
            pace::terminalMapping, hex(isIntegrated ? example.terminalMappingSecret : example.terminalMappingKey))));
    EXPECT_EQ(toHex(data(3)), toHex(pace::wrapped(pace::terminalKey, hex(example.terminalKey))));
    EXPECT_EQ(toHex(received[4]), "008600000C7C0A8508" + std::string(example.terminalToken) + "00");

    EXPECT_EQ(pace.chipAuthentication().has_value(), example.protocol.mapping == PaceMapping::ChipAuthentication);
    if (!pace.chipAuthentication())
        return;
    EXPECT_EQ(toHex(pace.chipAuthentication()->data), example.chipAuthenticationData);
    EXPECT_EQ(toHex(pace.chipAuthentication()->mappingKey), example.chipMappingKey);
    SecurityInfos cardSecurity;
    EXPECT_FALSE(pace.chipAuthentication()->isProvenBy(cardSecurity));
    cardSecurity.chipAuthenticationKeys.push_back({ { m_group, hex(example.terminalKey) }, {} });
    EXPECT_FALSE(pace.chipAuthentication()->isProvenBy(cardSecurity)) << "another chip's key";
    cardSecurity.chipAuthenticationKeys.push_back({ { m_group, hex(example.staticKey) }, {} });
    EXPECT_TRUE(pace.chipAuthentication()->isProvenBy(cardSecurity));
}

} // namespace
} // namespace kelvara::chip
