#include "Platform/Chip/software/SoftwareChip.h"

#include "ChipSamples.h"
#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/lds/COM.h"
#include "Platform/Chip/transport/AnswerToReset.h"

#include <algorithm>
#include <random>

namespace kelvara::chip {
namespace {

using namespace software;
using Id = DataGroupId;

enum class By { Nothing, Bac, Pace };

struct Way
{
    const char* name;
    By by;
    std::vector<PaceOffer> pace;
    std::vector<ChipAuthenticationKey> keys;
    std::optional<ActiveAuthenticationKey> active;
    bool extended;
};

TEST(SoftwareChip, IsReadWholeAndProvenEveryWay)
{
    constexpr auto des = CipherAlgorithm::TripleDES, aes128 = CipherAlgorithm::AES128, aes256 = CipherAlgorithm::AES256;
    const Way ways[] = {
        { "BAC, CA with triple DES, RSA", By::Bac, {}, { { 12, des } }, rsa(), true },
        { "PACE and CA spelled out", By::Pace, { {} }, { { 13, aes128, true } }, {}, true },
        { "short commands and AES", By::Pace, { { PaceMapping::Generic, 16, aes256 } }, { { 16, aes256 } },
            rsa(DigestAlgorithm::SHA1, true), false },
        { "prime fields", By::Pace, { { PaceMapping::Generic, 0, des } }, { { 1, aes128, true } }, {}, true },
        { "integrated mapping, ECDSA", By::Pace, { { PaceMapping::Integrated, 13, aes128 } }, { { 2, des } },
            curve("brainpoolP256r1"), true },
        { "chip authentication mapping and two keys", By::Pace,
            { { PaceMapping::Generic, 12, aes128 }, { PaceMapping::ChipAuthentication, 13, aes128 } }, { { 12, des } },
            curve("prime256v1"), true },
        { "nothing locked", By::Nothing, {}, { {} }, rsa(), true },
    };
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        ChipProfile profile = quickProfile();
        profile.hasAccessControl = way.by != By::Nothing;
        profile.pace = way.pace;
        profile.chipAuthentication = way.keys;
        profile.activeAuthentication = way.active;
        profile.announcesExtendedLength = profile.acceptsExtendedLength = way.extended;
        profile.files[Id::DG13] = *fromHex("6D03010203");
        profile.details.emplace().profession = QStringLiteral("HOST");
        profile.reading.longestAnswer = 700;
        const auto chip = chipOf(profile);
        ASSERT_TRUE(chip);
        EXPECT_EQ(announcesExtendedLength(chip->answerToReset()), way.extended);
        ChipDriver driver(chip, way.extended);
        ASSERT_TRUE(way.by != By::Bac || driver.openByBac());
        ASSERT_TRUE(way.by != By::Pace || driver.openByPace());
        ASSERT_EQ(driver.selectApplication(), 0x9000);
        EXPECT_EQ(driver.hasSession(), way.by != By::Nothing);

        const std::map<Id, Bytes> found = readAll(driver, *chip);
        ASSERT_TRUE(found.contains(Id::SOD) && found.contains(Id::DG2) && found.contains(Id::DG13));
        EXPECT_TRUE(judge(*chip, found).isGenuine());
        EXPECT_EQ(DataGroup11::parse(found.at(Id::DG11))->profession, QStringLiteral("HOST"));
        EXPECT_TRUE(driver.authenticateChip());
        EXPECT_EQ(readAll(driver, *chip), found) << "through the new session";
        EXPECT_EQ(!driver.authenticateActively(), way.active.has_value());

        const auto announced = SecurityInfos::parsed(found.at(Id::DG14));
        EXPECT_EQ(announced->pace.size(), way.pace.size()) << "a reader can notice when EF.CardAccess is quiet";
        EXPECT_EQ(COM::parse(found.at(Id::COM))->dataGroups.size(), found.size() - 2);
    }
}

TEST(SoftwareChip, TheMappingProvesTheChipByItsSignedKey)
{
    for (const bool isClone : { false, true }) {
        ChipProfile profile = quickProfile();
        profile.pace = { { PaceMapping::ChipAuthentication, 13, CipherAlgorithm::AES128 } };
        profile.chipAuthentication.clear();
        if (isClone)
            profile.forgeries = { Forgery::ChipAuthenticationClone };
        const auto chip = chipOf(profile);
        ChipDriver driver(chip);
        EXPECT_FALSE(driver.read(Id::CardSecurity));
        EXPECT_EQ(driver.refusal(), 0x6982);
        ASSERT_TRUE(driver.openByPace());
        const auto file = driver.read(Id::CardSecurity);
        ASSERT_TRUE(file && driver.mapped());
        EXPECT_EQ(driver.mapped()->isProvenBy(*SecurityInfos::fromCardSecurity(*file)), !isClone);
        const auto signedData = SignedData::parse(*file, SignedData::kCardSecurity);
        ASSERT_TRUE(signedData);
        EXPECT_EQ(signedData->signature, SignatureOutcome::Valid);
        EXPECT_TRUE(MasterList::parse(chip->authority()->certificate())->hasIssued(signedData->signer));
        driver.selectApplication();
        EXPECT_EQ(SecurityInfos::parsed(*driver.read(Id::DG14))->chipAuthenticationKeys.size(), 1U);
        EXPECT_EQ(driver.authenticateChip(), !isClone);
    }
}

TEST(SoftwareChip, GrantsAccessAsRealChipsDo)
{
    ChipProfile profile = quickProfile();
    profile.pace = { { PaceMapping::ChipAuthentication, 13, CipherAlgorithm::AES128 } };
    profile.files[Id::DG3] = *fromHex("6303010203");
    profile.hasAtrInfo = true;
    const auto chip = chipOf(profile);
    ChipDriver driver(chip);
    EXPECT_TRUE(driver.read(Id::CardAccess));
    EXPECT_TRUE(driver.read(Id::AtrInfo));
    EXPECT_EQ(driver.select(Id::CardSecurity), 0x6982);
    EXPECT_EQ(driver.select(Id::DG1), 0x6A82) << "it lies in the application";
    EXPECT_EQ(driver.selectApplication(), 0x9000);
    for (const Id id : { Id::COM, Id::DG1, Id::DG2, Id::SOD, Id::DG16 })
        EXPECT_EQ(driver.select(id), 0x6982) << entryOf(id).name;
    EXPECT_EQ(driver.send({ 0x00, 0xB0, 0x81, 0x00, {}, 6 }).sw, 0x6982) << "by the short identifier";
    EXPECT_EQ(driver.send({ 0x00, 0x88, 0x00, 0x00, Bytes(8), 256 }).sw, 0x6D00) << "no active authentication";
    EXPECT_EQ(driver.send({ 0x00, 0x22, 0x41, 0xA6, *fromHex("91024711"), {} }).sw, 0x6982);
    EXPECT_EQ(driver.send({ 0x0C, 0xB0, 0x81, 0x00, Bytes(20), 256 }).sw, 0x6982) << "no session";
    EXPECT_EQ(driver.send({ 0x80, 0xB0, 0x81, 0x00, {}, 6 }).sw, 0x6E00);
    EXPECT_EQ(driver.send({ 0x00, 0xE0, 0x00, 0x00, {}, {} }).sw, 0x6D00);

    ASSERT_TRUE(driver.openByBac());
    EXPECT_TRUE(driver.read(Id::DG1));
    for (const Id id : { Id::DG3, Id::DG4 })
        EXPECT_EQ(driver.select(id), 0x6982) << "needs terminal authentication";
    EXPECT_EQ(driver.send({ 0x00, 0xB0, 0x83, 0x00, {}, 6 }).sw, 0x6982);
    EXPECT_EQ(driver.select(Id::DG12), 0x6A82);
    EXPECT_EQ(driver.selectMasterFile(), 0x9000);
    EXPECT_EQ(driver.select(Id::CardSecurity), 0x6982) << "BAC does not open it";

    Bac late(driver.key());
    EXPECT_FALSE(driver.run(late)) << "not within a session";

    ChipDriver wrong(chip);
    EXPECT_FALSE(wrong.openByPace(PacePassword::fromMrz(*MrzKey::fromText("T22000129364081251010318"))));
    EXPECT_FALSE(wrong.hasSession());
    Bac other(*MrzKey::fromText("T22000129364081251010318"));
    wrong.selectApplication();
    EXPECT_FALSE(wrong.run(other));
    EXPECT_EQ(other.failure()->error, AccessError::WrongKey);

    profile.hasBac = false;
    profile.cardAccessNumber = "123456";
    ChipDriver paceOnly(chipOf(profile));
    EXPECT_FALSE(paceOnly.openByBac());
    EXPECT_FALSE(paceOnly.openByPace(PacePassword::fromCan("654321")));
    EXPECT_TRUE(paceOnly.openByPace(PacePassword::fromCan("123456")));

    ChipProfile another;
    another.isPassport = false;
    ChipDriver none(chipOf(another));
    EXPECT_EQ(none.selectApplication(), 0x6A82);
    EXPECT_FALSE(none.read(Id::CardAccess));
    EXPECT_EQ(none.send({ 0x00, 0x84, 0x00, 0x00, {}, 8 }).sw, 0x6D00);
}

TEST(SoftwareChip, EndsASessionAtTheFirstFault)
{
    const auto chip = chipOf(quickProfile());
    const auto isLocked = [&](ChipDriver& driver) {
        return driver.sendPlain({ 0x00, 0xB0, 0x81, 0x00, {}, 6 }).sw == 0x6982;
    };
    const struct
    {
        const char* name;
        CommandApdu command;
        std::uint16_t sw;
    } rows[] = {
        { "wrong checksum", { 0x0C, 0xB0, 0x81, 0x00, *fromHex("970106 8E08 0000000000000000"), 256 }, 0x6988 },
        { "no checksum", { 0x0C, 0xB0, 0x81, 0x00, *fromHex("970106"), 256 }, 0x6987 },
        { "nothing", { 0x0C, 0xB0, 0x81, 0x00, {}, 256 }, 0x6987 },
        { "in plain", { 0x00, 0xB0, 0x81, 0x00, {}, 6 }, 0x6982 },
    };
    for (const auto& row : rows) {
        ChipDriver driver(chip);
        ASSERT_TRUE(driver.openByBac());
        ASSERT_TRUE(driver.read(Id::COM));
        EXPECT_EQ(driver.sendPlain(row.command).sw, row.sw) << row.name;
        EXPECT_TRUE(isLocked(driver)) << row.name;
        EXPECT_FALSE(driver.read(Id::DG1)) << row.name << ": the keys count no more";
        EXPECT_TRUE(driver.openByBac()) << row.name;
    }
    ChipDriver driver(chip);
    ASSERT_TRUE(driver.openByPace());
    chip->powerUp();
    EXPECT_NE(driver.selectApplication(), 0x9000);
    EXPECT_FALSE(driver.hasSession());
}

TEST(SoftwareChip, TakesWhatLengthsItSays)
{
    ChipProfile profile = quickProfile();
    profile.acceptsExtendedLength = false;
    profile.activeAuthentication = rsa();
    const auto chip = chipOf(profile);
    const CommandApdu wide { 0x00, 0xB0, 0x81, 0x00, {}, 4096 };
    ChipDriver driver(chip, false);
    ASSERT_TRUE(driver.openByPace());
    ASSERT_EQ(driver.selectApplication(), 0x9000);
    EXPECT_EQ(driver.send(wide).sw, 0x6700) << "it announces more than it takes";
    EXPECT_FALSE(driver.hasSession());

    // Whatever is asked for, a short command's answer has no more than 256 bytes.
    for (const std::uint16_t manner : { 0x9000, 0x6700 }) {
        profile.reading.tooLongAnswer = manner;
        const auto strict = chipOf(profile);
        ChipDriver reading(strict, false);
        ASSERT_TRUE(reading.openByPace());
        reading.selectApplication();
        reading.select(Id::DG2);
        const ResponseApdu most = reading.send({ 0x00, 0xB0, 0x00, 0x00, {}, 256 });
        EXPECT_EQ(most.sw, manner);
        EXPECT_EQ(most.data.size(), manner == 0x9000 ? 223U : 0U);
        const ResponseApdu fitting = reading.send({ 0x00, 0xB0, 0x00, 0x00, {}, 223 });
        EXPECT_EQ(fitting.data.size(), 223U);
        EXPECT_EQ(reading.read(Id::DG2), strict->files().at(Id::DG2));
    }
}

TEST(SoftwareChip, TracesInTheClear)
{
    const auto chip = chipOf(quickProfile());
    std::vector<TraceEntry> entries;
    chip->setTrace([&](const TraceEntry& entry) { entries.push_back(entry); });
    ChipDriver driver(chip);
    driver.openByBac();
    const auto file = driver.read(Id::DG1);
    std::vector<std::string> names;
    for (const TraceEntry& entry : entries)
        names.push_back(entry.name);
    EXPECT_EQ(names,
        (std::vector<std::string> { "SELECT", "GET CHALLENGE", "EXTERNAL AUTHENTICATE", "SELECT", "READ BINARY" }));
    EXPECT_FALSE(entries[2].isProtected);
    EXPECT_TRUE(entries[4].isProtected);
    EXPECT_EQ(entries[4].number, 5U);
    EXPECT_EQ(entries[4].command.cla, 0x00);
    EXPECT_EQ(entries[4].response.data, file);
}

TEST(SoftwareChip, TakesAnyBytes)
{
    ChipProfile profile = quickProfile();
    profile.activeAuthentication = rsa();
    profile.pace
        = { { PaceMapping::Integrated, 13 }, { PaceMapping::ChipAuthentication, 13 }, { PaceMapping::Generic, 0 } };
    const auto chip = chipOf(profile);
    std::mt19937 random(11);
    const auto any = [&](auto... choices) {
        const std::uint8_t list[] = { static_cast<std::uint8_t>(choices)... };
        return list[random() % sizeof...(choices)];
    };
    const auto noise = [&](std::size_t size) {
        Bytes made(size);
        std::generate(made.begin(), made.end(), [&] { return static_cast<std::uint8_t>(random()); });
        return made;
    };
    const auto command = [&] {
        Bytes data = noise(random() % 40);
        if (random() % 2 == 0) // within a frame that protocols expect
            data = makeTlv(any(0x7C, 0x80, 0x83, 0x84, 0x91, 0x54), makeTlv(any(0x80, 0x81, 0x83, 0x85), data));
        return CommandApdu { 0x00, any(0x22, 0x82, 0x84, 0x86, 0x88, 0xA4, 0xB0, 0xB1, random()),
            any(0x00, 0x02, 0x04, 0x41, 0xC1, 0x81, random()), any(0x00, 0xA4, 0xA6, 0x0C, random()), std::move(data),
            random() % 2 == 0 ? std::nullopt : std::optional<std::uint32_t>(1 + random() % 65536) };
    };
    ChipDriver driver(chip);
    for (int round = 0; round < 3000; ++round) {
        ASSERT_GE(chip->transmit(noise(random() % 12)).size(), 2U);
        CommandApdu plain = command();
        plain.cla = any(0x00, 0x00, 0x0C, 0x10, random());
        ASSERT_GE(chip->transmit(plain.encoded()).size(), 2U);
    }
    unsigned answered = 0;
    for (int round = 0; round < 3000; ++round) {
        if (!driver.hasSession()) {
            driver.restart();
            ASSERT_TRUE(round % 2 == 0 ? driver.openByBac() : driver.openByPace());
        }
        answered += driver.send(command()).sw != 0;
    }
    EXPECT_EQ(answered, 3000U);
}

} // namespace
} // namespace kelvara::chip
