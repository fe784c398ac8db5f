#include "Reader.h"

#include <thread>

namespace kelvara {
namespace {

using Event = NFCViewDisplayMessage::Kind;

/// A profile whose DG2 has some 17 kilobytes, and a full DG11.
ChipProfile usualProfile()
{
    ChipProfile profile = evaluate::usualProfile();
    profile.details->fullName = chip::HolderName { QStringLiteral("ERIKSSON"), QStringLiteral("ANNA MARIA") };
    profile.details->placeOfBirth = { QStringLiteral("İstanbul") };
    return profile;
}

TEST(PassportReader, DeliversWhatIsOnTheChip)
{
    ChipProfile profile = usualProfile();
    profile.activeAuthentication.emplace();
    profile.activeAuthentication->curve = "prime256v1";
    const auto chip = makeChip(profile);
    const Outcome outcome = readChip(chip);
    expectWhole(outcome, *chip);
    const NFCPassportModel& passport = *outcome.passport;
    EXPECT_EQ(passport.surname, "ERIKSSON");
    EXPECT_EQ(passport.givenNames, "ANNA MARIA");
    EXPECT_EQ(passport.documentNumber, "D23145890");
    EXPECT_EQ(passport.gender, "F");
    EXPECT_EQ(passport.birthDate, QDate(1974, 8, 12));
    EXPECT_EQ(passport.personalNumber, "12345678950");
    EXPECT_EQ(passport.placeOfBirth, QString::fromUtf8("İstanbul"));
    EXPECT_EQ(passport.faceImage.size(), QSize(300, 400));
    EXPECT_EQ(passport.verification.bac, ProtocolOutcome::Succeeded);
    EXPECT_EQ(passport.verification.pace, ProtocolOutcome::NotOffered);
    EXPECT_EQ(passport.verification.chipAuthentication, ProtocolOutcome::Succeeded);
    EXPECT_EQ(passport.verification.activeAuthentication, ProtocolOutcome::Succeeded);
    EXPECT_FALSE(passport.isSignerTrusted()) << "nobody said whom to trust";
}

TEST(PassportReader, NeedsFewCommands)
{
    ChipProfile profile = usualProfile();
    profile.chipAuthentication.clear();
    profile.pace.clear();
    // DG14 without a key for chip authentication: what the figures are promised for.
    profile.files[DataGroupId::DG14]
        = *chip::fromHex("6E 14 31 12 30 10 06 0B 2A 86 48 86 F7 0D 01 01 01 01 01 02 01 01");
    for (const bool isExtended : { true, false }) {
        const auto chip = makeChip(profile);
        const auto terminal = std::make_shared<SoftwareTerminal>(chip);
        terminal->setPassesExtendedLength(isExtended);
        const Outcome outcome = readFrom(terminal, chip->mrzKey());
        expectWhole(outcome, *chip);
        EXPECT_GT(chip->files()[DataGroupId::DG2].size(), 16'000U);
        EXPECT_LE(terminal->counts().commands, isExtended ? 30U : 110U);
        RecordProperty(
            isExtended ? "commandsExtended" : "commandsShort", static_cast<int>(terminal->counts().commands));
    }
}

TEST(PassportReader, ProgressNeverFallsAndMovesEvenly)
{
    const auto chip = makeChip(usualProfile());
    const auto terminal = std::make_shared<SoftwareTerminal>(chip);
    terminal->setPassesExtendedLength(false);
    const Outcome outcome = readFrom(terminal, chip->mrzKey());
    expectWhole(outcome, *chip);
    ASSERT_GT(outcome.messages.size(), 40U);
    EXPECT_EQ(outcome.messages.front().kind, Event::requestPresentCard);
    EXPECT_EQ(outcome.messages[1].kind, Event::authenticating);
    int last = 0;
    for (const NFCViewDisplayMessage& message : outcome.messages) {
        EXPECT_GE(message.progress, last);
        EXPECT_LE(message.progress - last, 5) << "a leap at " << last;
        last = message.progress;
    }
    EXPECT_EQ(last, 100);
}

TEST(PassportReader, TellsFailuresApart)
{
    const auto good = makeChip(plainProfile());
    const auto on = [](const ChipProfile& profile) { return std::make_shared<SoftwareTerminal>(makeChip(profile)); };

    EXPECT_EQ(failureOf(readFrom(nullptr, good->mrzKey())), ErrorKind::NoReader);
    EXPECT_EQ(failureOf(readFrom(std::make_shared<SoftwareTerminal>(), good->mrzKey())), ErrorKind::Timeout);
    EXPECT_EQ(failureOf(readFrom(on(plainProfile()), QStringLiteral("nonsense"))), ErrorKind::InvalidKey);
    EXPECT_EQ(failureOf(readFrom(on(plainProfile()), {})), ErrorKind::InvalidKey);
    EXPECT_EQ(failureOf(readFrom(on(plainProfile()), good->mrzKey(), QUrl(QStringLiteral("file:///nowhere")))),
        ErrorKind::MasterListUnusable);

    const QString otherKey = QStringLiteral("L898902C<369080619406236");
    for (const bool isPace : { false, true }) {
        ChipProfile profile = plainProfile();
        if (isPace)
            profile.pace = { {} };
        const auto terminal = on(profile);
        const Outcome outcome = readFrom(terminal, otherKey);
        EXPECT_EQ(failureOf(outcome), ErrorKind::WrongKey) << outcome.sentence();
        EXPECT_EQ(outcome.error->verification.bac, isPace ? ProtocolOutcome::NotOffered : ProtocolOutcome::Failed)
            << "BAC is no way out of PACE";
    }

    ChipProfile other;
    other.isPassport = false;
    EXPECT_EQ(failureOf(readFrom(on(other), good->mrzKey())), ErrorKind::UnsupportedCard);
    ChipProfile bare = plainProfile();
    bare.files[DataGroupId::SOD] = std::nullopt;
    bare.filesAfterSigning[DataGroupId::SOD] = std::nullopt;
    EXPECT_EQ(failureOf(readFrom(on(bare), good->mrzKey())), ErrorKind::UnsupportedCard);
    ChipProfile faceless = plainProfile();
    faceless.portrait.reset();
    EXPECT_EQ(failureOf(readFrom(on(faceless), good->mrzKey())), ErrorKind::UnsupportedCard);

    ChipProfile shaky = plainProfile();
    shaky.faults.list = { ChipFault::tagLost(3, ChipFault::Counting::Presentation) };
    const auto terminal = on(shaky);
    terminal->setReturnAfterLoss(0ms);
    EXPECT_EQ(failureOf(readFrom(terminal, good->mrzKey())), ErrorKind::TagLost);
    ChipProfile lost = plainProfile();
    lost.faults.list = { ChipFault::tagLost(9) };
    const Outcome away = readFrom(on(lost), good->mrzKey());
    EXPECT_EQ(failureOf(away), ErrorKind::Timeout) << "it does not come back";
    EXPECT_TRUE(away.messages[away.messages.size() - 2].isCardLost) << "it is asked for again";
}

TEST(PassportReader, TwoPressesAreOneRead)
{
    const auto chip = makeChip(plainProfile());
    const auto terminal = std::make_shared<SoftwareTerminal>();
    PassportReader reader(ReaderLogLevel::Warning);
    reader.setTerminal(terminal);
    Read first;
    Read second;
    reader.readPassport(chip->mrzKey(), {}, true, first.display(), first.completed());
    EXPECT_TRUE(reader.isReading());
    reader.readPassport(chip->mrzKey(), {}, true, second.display(), second.completed());
    EXPECT_EQ(failureOf(second.get()), ErrorKind::AlreadyReading);
    terminal->place(chip);
    expectWhole(first.get(), *chip);
    EXPECT_FALSE(reader.isReading());
    Read third;
    reader.readPassport(chip->mrzKey(), {}, true, third.display(), third.completed());
    expectWhole(third.get(), *chip);
}

TEST(PassportReader, EndsWhenItIsCancelledUnpluggedOrDestroyed)
{
    ChipProfile slow = plainProfile();
    slow.faults.delay = 20ms;
    const auto chip = makeChip(slow);
    for (const char* end : { "cancel", "destroy", "unplug", "cancel waiting", "destroy waiting", "unplug waiting" }) {
        SCOPED_TRACE(end);
        const std::string_view what(end);
        const auto terminal = std::make_shared<SoftwareTerminal>();
        auto reader = std::make_unique<PassportReader>(ReaderLogLevel::Warning);
        reader->setTerminal(terminal);
        Read read;
        reader->readPassport(chip->mrzKey(), {}, true, read.display(), read.completed());
        if (!what.ends_with("waiting"))
            terminal->place(chip);
        std::this_thread::sleep_for(120ms);
        if (what.starts_with("cancel"))
            reader->cancel();
        else if (what.starts_with("destroy"))
            reader.reset();
        else
            terminal->unplug();
        const Outcome outcome = read.get();
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->kind, what.starts_with("unplug") ? ErrorKind::NoReader : ErrorKind::UserCancelled)
            << outcome.sentence();
    }
}

TEST(PassportReader, ReadsOnlyWhatIsWanted)
{
    ChipProfile profile = usualProfile();
    const auto chip = makeChip(profile);
    const auto terminal = std::make_shared<SoftwareTerminal>(chip);
    const Outcome outcome = readFrom(terminal, chip->mrzKey(), {}, { DataGroupId::DG11 });
    ASSERT_TRUE(outcome.passport) << outcome.sentence();
    EXPECT_TRUE(outcome.passport->dataGroupsRead.contains(DataGroupId::DG11));
    EXPECT_FALSE(outcome.passport->dataGroupsRead.contains(DataGroupId::DG2));
    EXPECT_EQ(outcome.passport->verification.chipAuthentication, ProtocolOutcome::Succeeded)
        << "proofs are not optional";
}

} // namespace
} // namespace kelvara
