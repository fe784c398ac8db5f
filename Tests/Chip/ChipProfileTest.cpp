#include "Platform/Chip/software/ChipProfile.h"

#include "ChipSamples.h"
#include "Platform/Chip/lds/DataGroup1.h"

namespace kelvara::chip {
namespace {

using namespace software;
using Id = DataGroupId;

TEST(ChipProfile, RefusesWhatCannotBe)
{
    const struct
    {
        const char* part;
        std::function<void(ChipProfile&)> change;
    } rows[] = {
        { "three lines of 30", [](ChipProfile& p) { p.zone = { QStringLiteral("I<UTO") }; } },
        { "three lines of 30", [](ChipProfile& p) { p.zone.clear(); } },
        { "three lines of 30", [](ChipProfile& p) { p.zone[2].replace(u'E', QChar(u'Ğ')); } },
        { "birth date should be 2", [](ChipProfile& p) { p.zone[1].replace(6, 1, u'5'); } },
        { "document number should be 7", [](ChipProfile& p) { p.zone[0].replace(14, 1, u'3'); } },
        { "PACE offer 2",
            [](ChipProfile& p) {
                p.pace.push_back({ PaceMapping::Integrated, 10 });
            } },
        { "PACE offer 2",
            [](ChipProfile& p) {
                p.pace.push_back({ PaceMapping::ChipAuthentication, 13, CipherAlgorithm::TripleDES });
            } },
        { "PACE offer 1",
            [](ChipProfile& p) {
                p.pace = { { PaceMapping::Generic, 5 } };
            } },
        { "share their parameters",
            [](ChipProfile& p) {
                p.pace = { { PaceMapping::ChipAuthentication, 12 }, { PaceMapping::ChipAuthentication, 13 } };
            } },
        { "chip authentication has no", [](ChipProfile& p) { p.chipAuthentication = { { 19 } }; } },
        { "could not be opened",
            [](ChipProfile& p) {
                p.hasBac = false;
                p.pace.clear();
            } },
        { "no curve", [](ChipProfile& p) { p.activeAuthentication = curve("squircle"); } },
        { "1024 to 4096", [](ChipProfile& p) { p.activeAuthentication.emplace().rsaBits = 512; } },
        { "short trailer", [](ChipProfile& p) { p.activeAuthentication = rsa(DigestAlgorithm::SHA256, true); } },
        { "1 to 16 digits", [](ChipProfile& p) { p.cardAccessNumber = "12a"; } },
        { "needs active authentication", [](ChipProfile& p) { p.forgeries = { Forgery::MissingDG15 }; } },
        { "needs a portrait",
            [](ChipProfile& p) {
                p.portrait.reset();
                p.forgeries = { Forgery::ChangedDG2 };
            } },
        { "portrait is too", [](ChipProfile& p) { p.portrait->picture = QImage(6001, 2, QImage::Format_RGB32); } },
        { "larger than any", [](ChipProfile& p) { p.files[Id::DG13] = Bytes((1 << 20) + 1); } },
        { "authority's keys",
            [](ChipProfile& p) {
                p.authority.reset();
                p.authorityOptions.signer.key = SigningKey::Rsa;
                p.authorityOptions.signer.rsaBits = 128;
            } },
    };
    for (const auto& row : rows) {
        ChipProfile profile = quickProfile();
        row.change(profile);
        const auto made = SoftwareChip::make(profile);
        ASSERT_TRUE(std::holds_alternative<QString>(made)) << row.part;
        EXPECT_NE(std::get<QString>(made).indexOf(QLatin1String(row.part)), -1)
            << row.part << " / " << std::get<QString>(made).toStdString();
    }
}

TEST(ChipProfile, ZonesOfEveryFormatOpenTheirChips)
{
    const struct
    {
        QStringList zone;
        const char* key;
    } rows[] = {
        { { QStringLiteral("P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<"),
              QStringLiteral("L898902C36UTO7408122F1204159ZE184226B<<<<<10") },
            "L898902C3674081221204159" },
        { { QStringLiteral("I<UTOSTEVENSON<<PETER<JOHN<<<<<<<<<<"),
              QStringLiteral("D23145890<UTO3407127M95071227349<<<8") },
            "D23145890734934071279507122" },
        { { QStringLiteral("I<UTOD23145890<7349<<<<<<<<<<<"), QStringLiteral("3407127M9507122UTO<<<<<<<<<<<2"),
              QStringLiteral("STEVENSON<<PETER<JOHN<<<<<<<<<") },
            "D23145890734934071279507122" },
    };
    for (const auto& row : rows) {
        ChipProfile profile = quickProfile();
        profile.zone = row.zone;
        const auto chip = chipOf(profile);
        ASSERT_TRUE(chip);
        EXPECT_EQ(chip->mrzKey().toStdString(), row.key);
        ChipDriver driver(chip);
        EXPECT_TRUE(driver.openByBac());
        profile.forgeries = { Forgery::ForeignDG1 };
        const auto other = DataGroup1::parse(chipOf(profile)->files().at(Id::DG1));
        ASSERT_TRUE(other);
        profile.forgeries.clear();
        profile.zone = other->lines;
        EXPECT_TRUE(chipOf(profile)) << "its check digits are right too";
    }
}

} // namespace
} // namespace kelvara::chip
