#include "ChipSamples.h"
#include "Platform/Chip/lds/COM.h"
#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/lds/DataGroup2.h"
#include "Platform/Chip/lds/Portrait.h"

namespace kelvara::chip {
namespace {

using namespace software;
using Id = DataGroupId;

TEST(ChipForgeries, EachDiffersInWhatItSays)
{
    ChipProfile profile = quickProfile();
    profile.activeAuthentication = rsa();
    const auto read = [&](Forgery forgery, auto&& check) {
        SCOPED_TRACE(std::string(nameOf(forgery)));
        profile.forgeries = { forgery };
        const auto chip = chipOf(profile);
        ASSERT_TRUE(chip);
        ChipDriver driver(chip);
        ASSERT_TRUE(driver.openByBac());
        const auto files = readAll(driver, *chip);
        check(driver, files, judge(*chip, files));
        EXPECT_EQ(forgeryOfName(nameOf(forgery)), forgery);
    };
    using Files = std::map<Id, Bytes>;
    using Judgement = PassiveAuthentication;

    const auto onlyWrong = [](Id wrong) {
        return [wrong](ChipDriver&, const Files&, const Judgement& judgement) {
            EXPECT_EQ(judgement.signature, SignatureOutcome::Valid);
            for (const auto& [id, outcome] : judgement.hashes)
                EXPECT_EQ(outcome, id == wrong ? HashOutcome::Mismatch : HashOutcome::Match) << entryOf(id).name;
        };
    };
    read(Forgery::ChangedDG1, onlyWrong(Id::DG1));
    read(Forgery::ChangedDG2, [&](ChipDriver& driver, const Files& files, const Judgement& judgement) {
        onlyWrong(Id::DG2)(driver, files, judgement);
        const auto face = DataGroup2::parse(files.at(Id::DG2));
        ASSERT_TRUE(face);
        EXPECT_TRUE(std::holds_alternative<QImage>(decodePortrait(face->faces[0].image.data)));
    });
    read(Forgery::SwappedSecurityObject, [](ChipDriver&, const Files&, const Judgement& judgement) {
        EXPECT_EQ(judgement.signature, SignatureOutcome::Valid);
        EXPECT_EQ(judgement.signer, SignerTrust::Trusted);
        for (const auto& [id, outcome] : judgement.hashes)
            EXPECT_EQ(outcome, HashOutcome::Mismatch) << entryOf(id).name;
    });
    read(Forgery::ForeignSigner, [](ChipDriver&, const Files&, const Judgement& judgement) {
        EXPECT_EQ(judgement.signature, SignatureOutcome::Valid);
        EXPECT_TRUE(judgement.areHashesRight());
        EXPECT_EQ(judgement.signer, SignerTrust::NotTrusted);
        EXPECT_EQ(judgement.signerCountry, QStringLiteral("UT"));
    });
    read(Forgery::ActiveAuthenticationClone, [](ChipDriver& driver, const Files&, const Judgement& judgement) {
        EXPECT_TRUE(judgement.isGenuine());
        ASSERT_TRUE(driver.authenticateActively());
        EXPECT_EQ(driver.authenticateActively()->error, AccessError::NotGenuine);
    });
    read(Forgery::ChipAuthenticationClone, [](ChipDriver& driver, const Files&, const Judgement& judgement) {
        EXPECT_TRUE(judgement.isGenuine());
        EXPECT_FALSE(driver.authenticateChip());
        EXPECT_EQ(driver.failure()->sw, 0x6988) << "only the first command of the new session shows it";
    });
    read(Forgery::RefusesChipAuthentication, [](ChipDriver& driver, const Files& files, const Judgement& judgement) {
        EXPECT_TRUE(judgement.isGenuine());
        ChipAuthentication refused(*chooseChipAuthentication(*SecurityInfos::parsed(files.at(Id::DG14))));
        EXPECT_FALSE(driver.run(refused));
        EXPECT_EQ(refused.failure()->sw, 0x6A88);
        EXPECT_TRUE(driver.read(Id::DG1)) << "the session goes on";
    });
    read(Forgery::RefusesActiveAuthentication, [](ChipDriver& driver, const Files&, const Judgement&) {
        EXPECT_EQ(driver.authenticateActively()->sw, 0x6D00);
    });
    read(Forgery::PaceHidden, [](ChipDriver& driver, const Files& files, const Judgement&) {
        EXPECT_FALSE(SecurityInfos::parsed(files.at(Id::DG14))->pace.empty());
        driver.selectMasterFile();
        EXPECT_EQ(driver.select(Id::CardAccess), 0x6A82);
    });
    read(Forgery::PaceStripped, [](ChipDriver& driver, const Files& files, const Judgement&) {
        EXPECT_FALSE(SecurityInfos::parsed(files.at(Id::DG14))->pace.empty());
        driver.selectMasterFile();
        const auto stripped = driver.read(Id::CardAccess);
        ASSERT_TRUE(stripped && SecurityInfos::parsed(*stripped));
        EXPECT_TRUE(SecurityInfos::parsed(*stripped)->pace.empty());
    });
    read(Forgery::QuietCom, [](ChipDriver&, const Files& files, const Judgement&) {
        EXPECT_EQ(COM::parse(files.at(Id::COM))->dataGroups, (std::vector<Id> { Id::DG1, Id::DG2 }));
        EXPECT_TRUE(files.contains(Id::DG14) && files.contains(Id::DG15));
    });
    read(Forgery::MissingDG15, [](ChipDriver&, const Files& files, const Judgement& judgement) {
        EXPECT_FALSE(files.contains(Id::DG15));
        EXPECT_EQ(judgement.hashes.at(Id::DG15), HashOutcome::NotRead);
    });
    read(Forgery::UndecodablePortrait, [](ChipDriver&, const Files& files, const Judgement& judgement) {
        EXPECT_TRUE(judgement.isGenuine());
        const auto face = DataGroup2::parse(files.at(Id::DG2));
        ASSERT_TRUE(face);
        EXPECT_TRUE(std::holds_alternative<PortraitProblem>(decodePortrait(face->faces[0].image.data)));
    });
    read(Forgery::ForeignDG1, [](ChipDriver& driver, const Files& files, const Judgement& judgement) {
        EXPECT_TRUE(judgement.isGenuine());
        const auto zone = DataGroup1::parse(files.at(Id::DG1));
        const auto own = MrzKey::fromFields(
            zone->documentNumber.toStdString(), zone->birthDate.toStdString(), zone->expiryDate.toStdString());
        ASSERT_TRUE(own);
        EXPECT_NE(own->secret(), driver.key().secret());
    });
}

} // namespace
} // namespace kelvara::chip
