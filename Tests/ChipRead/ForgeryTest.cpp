#include "Reader.h"

#include <QTemporaryFile>

namespace kelvara {
namespace {

TEST(Forgeries, AreRefused)
{
    struct Row
    {
        Forgery forgery;
        std::optional<ErrorKind> kind; ///< Absent: nothing is wrong with it.
        bool needsMasterList = false;
    };
    QTemporaryFile trusted;
    ASSERT_TRUE(trusted.open());
    const chip::Bytes certificate = issuer().certificatePem();
    trusted.write(reinterpret_cast<const char*>(certificate.data()), static_cast<qint64>(certificate.size()));
    trusted.flush();
    const QUrl masterList = QUrl::fromLocalFile(trusted.fileName());
    for (const Row& row :
        { Row { Forgery::ChangedDG1, ErrorKind::NotGenuine }, Row { Forgery::ChangedDG2, ErrorKind::NotGenuine },
            Row { Forgery::SwappedSecurityObject, ErrorKind::NotGenuine },
            Row { Forgery::ForeignSigner, ErrorKind::NotGenuine, true },
            Row { Forgery::ActiveAuthenticationClone, ErrorKind::NotGenuine },
            Row { Forgery::ChipAuthenticationClone, ErrorKind::NotGenuine },
            Row { Forgery::RefusesChipAuthentication, ErrorKind::NotGenuine },
            Row { Forgery::RefusesActiveAuthentication, ErrorKind::NotGenuine },
            Row { Forgery::PaceHidden, ErrorKind::NotGenuine }, Row { Forgery::PaceStripped, ErrorKind::NotGenuine },
            Row { Forgery::QuietCom, std::nullopt }, Row { Forgery::MissingDG15, ErrorKind::NotGenuine },
            Row { Forgery::UndecodablePortrait, ErrorKind::UnreadableData },
            Row { Forgery::ForeignDG1, ErrorKind::NotGenuine } }) {
        SCOPED_TRACE(std::string(nameOf(row.forgery)));
        ChipProfile profile = plainProfile();
        profile.pace = { {} };
        profile.activeAuthentication.emplace();
        profile.activeAuthentication->curve = "prime256v1";
        profile.forgeries = { row.forgery };
        for (const bool isListed : { false, true }) {
            const auto chip = makeChip(profile);
            const Outcome outcome = readChip(chip, isListed ? masterList : QUrl());
            if (!row.kind || (row.needsMasterList && !isListed)) {
                expectWhole(outcome, *chip);
                EXPECT_EQ(outcome.passport && outcome.passport->isSignerTrusted(), isListed);
            } else {
                EXPECT_FALSE(outcome.passport);
                ASSERT_TRUE(outcome.error);
                EXPECT_EQ(outcome.error->kind, *row.kind) << outcome.sentence();
            }
        }
    }
    // Errors carry what had been found out.
    ChipProfile profile = plainProfile();
    profile.forgeries = { Forgery::ChangedDG2 };
    const Outcome changed = readChip(makeChip(profile));
    ASSERT_TRUE(changed.error && changed.error->verification.passiveAuthentication);
    EXPECT_EQ(changed.error->dataGroup, DataGroupId::DG2);
    EXPECT_EQ(
        changed.error->verification.passiveAuthentication->hashes.at(DataGroupId::DG2), chip::HashOutcome::Mismatch);
    EXPECT_EQ(changed.error->verification.passiveAuthentication->hashes.at(DataGroupId::DG1), chip::HashOutcome::Match);
    EXPECT_EQ(changed.error->verification.chipAuthentication, ProtocolOutcome::Succeeded);
}

} // namespace
} // namespace kelvara
