#include "Reader.h"

#include "Platform/Chip/software/ExplicitParameters.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"

#include <QTemporaryFile>

namespace kelvara {
namespace {

using chip::Bytes;
using chip::CipherAlgorithm;
using chip::PaceMapping;
using chip::software::PaceOffer;

/// A profile whose chips carry another's signed files as they are.
ChipProfile withFilesOf(const SoftwareChip& original, ChipProfile profile)
{
    for (const auto& [id, file] : original.files()) {
        if (id != DataGroupId::CardAccess && id != DataGroupId::CardSecurity)
            profile.filesAfterSigning[id] = file;
    }
    return profile;
}

class TrustedIssuer
{
public:
    TrustedIssuer()
    {
        EXPECT_TRUE(m_file.open());
        const Bytes certificate = issuer().certificatePem();
        m_file.write(reinterpret_cast<const char*>(certificate.data()), static_cast<qint64>(certificate.size()));
        m_file.flush();
    }
    [[nodiscard]] QUrl url() const { return QUrl::fromLocalFile(m_file.fileName()); }

private:
    QTemporaryFile m_file;
};

// The copy proves a key of its own: EF.CardSecurity, which names it, is no file of the document's.
TEST(Clones, AreNotMadeGenuineByTheMappingsOwnKey)
{
    const TrustedIssuer trusted;
    ChipProfile original = plainProfile();
    original.pace = { { PaceMapping::ChipAuthentication, 13, CipherAlgorithm::AES128 } };
    const auto genuine = makeChip(original);
    expectWhole(readChip(genuine, trusted.url()), *genuine);

    for (const bool isOfAnotherDocument : { false, true }) {
        ChipProfile copy = original;
        if (!isOfAnotherDocument) // the key is signed by nobody, else it is some other genuine document's
            copy.authority = *TestAuthority::make();
        const auto clone = makeChip(withFilesOf(*genuine, copy));
        for (const QUrl& list : { QUrl(), trusted.url() }) {
            const Outcome outcome = readChip(clone, list);
            EXPECT_EQ(failureOf(outcome), ErrorKind::NotGenuine) << outcome.sentence();
        }
    }
}

TEST(Clones, MayMapWithAKeyThatTheDocumentDoesNotNameButProveNothingByIt)
{
    ChipProfile profile = plainProfile();
    profile.pace = { { PaceMapping::ChipAuthentication, 13, CipherAlgorithm::AES128 } };
    // The signed infos have no key at all.
    const Bytes identifier = chip::PaceProtocol { chip::KeyAgreementGroup::Kind::ECDH, PaceMapping::ChipAuthentication,
        CipherAlgorithm::AES128 }
                                 .identifier();
    const Bytes info = chip::securityInfo(identifier, { *chip::fromHex("02 01 02"), *chip::fromHex("02 01 0D") });
    profile.files[DataGroupId::DG14] = chip::makeTlv(0x6E, chip::securityInfos({ info }));
    const Outcome outcome = readChip(makeChip(profile));
    ASSERT_TRUE(outcome.passport) << outcome.sentence();
    EXPECT_EQ(outcome.passport->verification.chipAuthentication, ProtocolOutcome::NotSupported);
    EXPECT_FALSE(outcome.passport->verification.isChipAuthenticatedByPace);
    EXPECT_FALSE(outcome.passport->verification.isChipGenuine());
}

/// The same chip comes back without what it asked for at first.
TEST(Clones, CannotTakeTheAccessControlAwayInMidRead)
{
    ChipProfile locked = plainProfile();
    locked.faults.list = { ChipFault::tagLost(8) };
    const auto genuine = makeChip(locked);
    ChipProfile bare = plainProfile();
    bare.hasAccessControl = false;
    const auto open = makeChip(withFilesOf(*genuine, bare));
    const auto terminal = std::make_shared<SoftwareTerminal>(genuine);
    PassportReader reader(ReaderLogLevel::Warning);
    reader.setTerminal(terminal);
    reader.setPatience(2s, 2s);
    Read read;
    reader.readPassport(
        genuine->mrzKey(), {}, true,
        [&, inner = read.display()](const NFCViewDisplayMessage& message) {
            if (message.isCardLost)
                terminal->place(open);
            return inner(message);
        },
        read.completed());
    const Outcome outcome = read.get();
    EXPECT_FALSE(outcome.passport);
    EXPECT_EQ(failureOf(outcome), ErrorKind::ConnectionFailed) << outcome.sentence();
}

/// Domain parameters of the chip's own: whoever keeps quiet about them makes the offer useless.
TEST(Clones, CannotHideTheParametersOfAnOffer)
{
    const Bytes pace
        = chip::PaceProtocol { chip::KeyAgreementGroup::Kind::ECDH, PaceMapping::Generic, CipherAlgorithm::AES128 }
              .identifier();
    const Bytes version = *chip::fromHex("02 01 02"), number = *chip::fromHex("02 01 20");
    const Bytes offer = chip::securityInfo(pace, { version, number });
    const Bytes parameters
        = chip::securityInfo(Bytes(pace.begin(), pace.end() - 1), { *chip::software::explicitAlgorithm(13), number });
    ChipProfile profile = plainProfile();
    profile.files[DataGroupId::DG14] = chip::makeTlv(0x6E, chip::securityInfos({ offer, parameters }));
    profile.chipAuthentication.clear();
    profile.files[DataGroupId::CardAccess] = chip::securityInfos({ offer });
    const Outcome outcome = readChip(makeChip(profile));
    EXPECT_EQ(failureOf(outcome), ErrorKind::NotGenuine) << outcome.sentence();
    EXPECT_TRUE(outcome.error && outcome.error->verification.isAccessDowngraded);
}

TEST(Clones, AccessIsReportedAsItWasInTheEnd)
{
    // EF.CardAccess is overheard as missing once: BAC opens the chip, which then turns out to have PACE.
    ChipProfile profile = plainProfile();
    profile.pace = { {} };
    profile.faults.list = { ChipFault::statusWord(1, 0x6A82) };
    const auto chip = makeChip(profile);
    const Outcome outcome = readChip(chip);
    expectWhole(outcome, *chip);
    EXPECT_EQ(outcome.passport->verification.pace, ProtocolOutcome::Succeeded);
    EXPECT_EQ(outcome.passport->verification.bac, ProtocolOutcome::NotOffered);
}

} // namespace
} // namespace kelvara
