#include "Kelvara/IDCardModel.h"
#include "Kelvara/IDCardSummary.h"
#include "Kelvara/IDCardUtil.h"
#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/SdkModel.h"
#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Chip/sheet/SheetText.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Platform/Mrz/QKMRZResult.h"
#include "Tests/Support/AccessWatch.h"
#include "Tests/Support/KycHarness.h"

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using namespace std::chrono_literals;
using chip::software::ChipFault;
using chip::software::ChipProfile;
using chip::software::SoftwareChip;
using chip::software::SoftwareTerminal;
using enum ViewType;

/// What the camera would have read of the chip's card.
QKMRZResult printedZone()
{
    QKMRZResult zone;
    zone.documentNumber = QStringLiteral("D23145890");
    zone.birthDate = QDate(1974, 8, 12);
    zone.expiryDate = QDate(2032, 4, 15);
    return zone;
}

ChipProfile profile()
{
    ChipProfile made;
    made.pace.clear();
    made.portrait->picture = QImage(60, 80, QImage::Format_RGB32);
    made.portrait->picture.fill(Qt::darkCyan);
    made.portrait->kind = chip::ImageKind::Jpeg;
    return made;
}

/// A phone with a contactless reader that software plays, at the chip's step.
class NfcStep : public testing::Test
{
protected:
    void open(const QList<ViewType>& steps = { nfcRead })
    {
        Device device = Device::phone();
        device.terminal = terminal;
        stage = std::make_unique<Stage>(device);
        stage->setSteps(steps);
    }
    void acceptZone(const QKMRZResult& zone = printedZone())
    {
        stage->d().sdkModel->mrzInfo = std::make_shared<QKMRZScanResult>(zone, UIImage());
    }
    static std::shared_ptr<SoftwareChip> chipOf(const ChipProfile& made)
    {
        return std::get<std::shared_ptr<SoftwareChip>>(SoftwareChip::make(made));
    }
    void press() { QTest::mouseClick(stage->d().nfcReadButton, Qt::LeftButton); }
    [[nodiscard]] chip::ReaderSheet* sheet() const { return stage->view->window()->findChild<chip::ReaderSheet*>(); }
    /// The whole message below the sheet's title.
    [[nodiscard]] QString sheetText() const
    {
        const auto* message
            = sheet() ? sheet()->findChild<chip::sheet::SheetText*>(QStringLiteral("message")) : nullptr;
        return message ? message->text() : QString();
    }
    /// Waits for the read to end without anybody being told.
    [[nodiscard]] bool ended() const
    {
        return spinUntil([this] { return !stage->d().idCardReader->isReading(); });
    }

    std::shared_ptr<SoftwareTerminal> terminal = std::make_shared<SoftwareTerminal>();
    std::unique_ptr<Stage> stage;
};

TEST_F(NfcStep, ReadsTheCardAndHandsItOver)
{
    open({ nfcRead, selfie });
    acceptZone();
    AccessWatch watch;
    press();
    EXPECT_TRUE(spinUntil([&] { return sheet() != nullptr; }));
    terminal->place(chipOf(profile()));
    ASSERT_TRUE(spinUntil([&] { return stage->delegate.calls.contains("nfc"); }));
    const auto holder = stage->d().sdkModel->nfcData;
    ASSERT_TRUE(holder && holder->passport());
    EXPECT_EQ(holder->passport().get(), stage->delegate.passport) << "the very model that was read";
    EXPECT_EQ(holder->passport()->surname, "ERIKSSON");
    EXPECT_EQ(holder->passportNumber(), "D23145890");
    EXPECT_EQ(holder->dateOfBirth(), "740812");
    EXPECT_EQ(holder->expiryDate(), "320415");
    EXPECT_EQ(stage->d().selectedViewType, selfie) << "the flow moves on";
    EXPECT_EQ(stage->d().services.userDefaults->string(QStringLiteral("passportNumber")), "D23145890");
    EXPECT_TRUE(spinUntil([&] { return sheet() == nullptr; })) << "the sheet goes by itself";

    // What everybody in the room may hear.
    EXPECT_TRUE(watch.hasSaid(text("Kimlik Kartı Başarıyla okundu.")));
    EXPECT_EQ(watch.said.count(text("Yüzde 100")), 1);
    EXPECT_EQ(watch.said.removeDuplicates(), 0) << watch.said.join('|').toStdString();
    for (const char* secret : { "ERIKSSON", "Eriksson", "D23145890", "740812", "320415", "1974", "2032" })
        EXPECT_FALSE(watch.hasSaid(QString::fromLatin1(secret))) << secret;
}

TEST_F(NfcStep, WithoutADelegateTheFlowStillMovesOn)
{
    open({ nfcRead, selfie });
    stage->view->setDelegate(nullptr);
    acceptZone();
    terminal->place(chipOf(profile()));
    press();
    EXPECT_TRUE(spinUntil([&] { return stage->d().selectedViewType == selfie; }));
    EXPECT_TRUE(stage->d().sdkModel->nfcData);
}

TEST_F(NfcStep, WithoutAZoneNothingIsRead)
{
    open();
    terminal->place(chipOf(profile()));
    press();
    settle();
    EXPECT_FALSE(stage->d().idCardReader->isReading());
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_TRUE(stage->shownText().contains(
        text("Kimlik mrz bilgisi bulunamamıştır. Nfc okuması yapılabilmesi için öncelikle kimlik bilgilerinin sistem "
             "tarafından kaydedilmesi gerekmektedir.")))
        << stage->shownText().toStdString();
    EXPECT_EQ(terminal->counts().connections, 0U);
}

TEST_F(NfcStep, AFailedReadChangesNothingAndCanBeTriedAgain)
{
    open({ nfcRead, selfie });
    QKMRZResult other = printedZone();
    other.documentNumber = QStringLiteral("D23145891");
    acceptZone(other);
    const auto chip = chipOf(profile());
    terminal->place(chip);
    testing::internal::CaptureStdout();
    press();
    const bool isOver = ended();
    settle();
    const std::string said = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(isOver);
    EXPECT_TRUE(said.starts_with("Hata:  ")) << said;
    EXPECT_NE(said.find("WrongKey"), std::string::npos) << said;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(said.find("D2314589"), std::string::npos) << "nothing of the card";
    EXPECT_EQ(stage->d().selectedViewType, nfcRead);
    EXPECT_TRUE(stage->delegate.calls.isEmpty());
    EXPECT_FALSE(stage->d().sdkModel->nfcData);

    acceptZone();
    stage->d().nfcReadInput();
    EXPECT_TRUE(spinUntil([&] { return stage->delegate.calls.contains("nfc"); }));
    EXPECT_EQ(stage->d().selectedViewType, selfie);
}

TEST_F(NfcStep, SaysItsOwnWordsWhileItReads)
{
    ChipProfile slow = profile();
    slow.faults.delay = 15ms;
    open();
    acceptZone();
    press();
    const QString request = text("IPhone'unuzu NFC özellikli bir Kimlik Kartının yakınında tutun.");
    EXPECT_TRUE(spinUntil([&] { return sheetText() == request; })) << sheetText().toStdString();
    QStringList loading; // with every bar that there is
    for (int percent = 0; percent <= 100; percent += 20)
        loading << text("Yükleniyor lütfen bekleyiniz...\n") + QorvelKycViewPrivate::handleProgress(percent);
    QStringList seen;
    terminal->place(chipOf(slow));
    EXPECT_TRUE(spinUntil([&] {
        const QString now = sheetText();
        if (now.startsWith(text("Yükleniyor")) && !seen.contains(now))
            seen << now;
        return now == text("Kimlik Kartı Başarıyla okundu.");
    }));
    EXPECT_FALSE(seen.isEmpty());
    for (const QString& shown : seen)
        EXPECT_TRUE(loading.contains(shown)) << shown.toStdString();
}

TEST_F(NfcStep, CancelledOnTheSheetIsAFailedRead)
{
    open();
    acceptZone();
    testing::internal::CaptureStdout();
    press();
    ASSERT_TRUE(spinUntil([&] { return sheet() && sheet()->isVisible(); }));
    QTest::keyClick(sheet(), Qt::Key_Escape);
    const bool isOver = ended();
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(isOver);
    EXPECT_NE(said.find("UserCancelled"), std::string::npos) << said;
}

TEST_F(NfcStep, TwoPressesAreOneRead)
{
    open({ nfcRead, selfie });
    acceptZone();
    testing::internal::CaptureStdout();
    press();
    stage->d().nfcReadInput(); // by keyboard, past the sheet
    settle();
    terminal->place(chipOf(profile()));
    const bool isRead = spinUntil([&] { return stage->delegate.calls.contains("nfc"); });
    settle();
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(isRead);
    EXPECT_NE(said.find("AlreadyReading"), std::string::npos) << said;
    EXPECT_EQ(stage->delegate.calls.count("nfc"), 1);
}

TEST_F(NfcStep, AReadThatEndsInAnotherStepMovesTheFlowOn)
{
    open({ nfcRead, selfie, jitsi });
    acceptZone();
    press();
    stage->view->showSelfieView();
    terminal->place(chipOf(profile()));
    ASSERT_TRUE(spinUntil([&] { return stage->delegate.calls.contains("nfc"); }));
    settle();
    EXPECT_TRUE(stage->d().sdkModel->nfcData);
    EXPECT_EQ(stage->d().selectedViewType, jitsi);
}

TEST_F(NfcStep, TheViewMayGoAtAnyMomentOfARead)
{
    ChipProfile slow = profile();
    slow.faults.delay = 4ms;
    for (const int milliseconds : { 0, 1, 10, 40, 90 }) {
        testing::internal::CaptureStdout(); // of the read that is broken off
        open();
        acceptZone();
        terminal->place(chipOf(slow));
        press();
        QTest::qWait(milliseconds);
        stage.reset();
        settle();
        testing::internal::GetCapturedStdout();
    }
    open();
    acceptZone();
    terminal->place(chipOf(profile()));
    stage->delegate.during = [](QorvelKycView& view, const QString&) { delete &view; };
    press();
    EXPECT_TRUE(spinUntil([&] { return stage->view.isNull(); })) << "deleted while the host is told";
}

TEST_F(NfcStep, ZonesWithoutDatesAreAHardStop)
{
    open();
    QKMRZResult zone = printedZone();
    zone.birthDate.reset();
    acceptZone(zone);
    EXPECT_DEATH(stage->d().nfcReadInput(), "Fatal error: The MRZ has no date of birth");
    zone = printedZone();
    zone.expiryDate.reset();
    acceptZone(zone);
    EXPECT_DEATH(stage->d().nfcReadInput(), "Fatal error: The MRZ has no date of expiry");
}

TEST_F(NfcStep, AHostIsNeverToldOfAReadWithoutData)
{
    open();
    EXPECT_DEATH(stage->d().callResultScreen(std::make_shared<IDCardUtil>(nullptr)), "There is no chip data to report");
}

TEST(NfcProgress, IsFiveCircles)
{
    const QString full = text("🟢 ");
    const QString empty = text("⚪️ ");
    EXPECT_EQ(full.toUtf8().size(), 5);
    EXPECT_EQ(empty.toUtf8().size(), 7);
    const struct
    {
        int percent;
        int filled;
    } rows[] = { { -19, 0 }, { 0, 0 }, { 19, 0 }, { 20, 1 }, { 39, 1 }, { 40, 2 }, { 99, 4 }, { 100, 5 }, { 119, 5 } };
    for (const auto& row : rows)
        EXPECT_EQ(QorvelKycViewPrivate::handleProgress(row.percent),
            full.repeated(row.filled) + empty.repeated(5 - row.filled))
            << row.percent;
    EXPECT_DEATH((void)QorvelKycViewPrivate::handleProgress(120), "negative number");
}

TEST(IDCardModel, TakesOverWhatOpensAChip)
{
    const IDCardModel model(QStringLiteral("A1"), QDate(1990, 1, 2), QDate(2030, 3, 4));
    EXPECT_EQ(model.documentNumber, "A1");
    EXPECT_EQ(model.birthDate, QDate(1990, 1, 2));
    EXPECT_EQ(model.expiryDate, QDate(2030, 3, 4));
    EXPECT_TRUE(QImage(model.documentImage).isNull());
    for (const QString& field : { model.documentType, model.countryCode, model.surnames, model.givenNames,
             model.nationality, model.gender, model.personalNumber })
        EXPECT_TRUE(field.isEmpty());
}

TEST(IDCardSummary, TellsGendersAndNeedsThePortrait)
{
    for (const auto& [gender, shown] : { std::pair("F", "FEMALE"), std::pair("M", "MALE"), std::pair("", "N/A"),
             std::pair("X", "N/A"), std::pair("f", "N/A") }) {
        const auto passport = std::make_shared<NFCPassportModel>();
        passport->gender = QLatin1String(gender);
        passport->faceImage = QImage(4, 4, QImage::Format_RGB32);
        passport->faceImage.fill(Qt::gray);
        IDCardUtil holder(nullptr);
        holder.setPassport(passport);
        const auto summary = IDCardSummary::of(holder);
        EXPECT_EQ(summary.gender, QLatin1String(shown));
        EXPECT_FALSE(summary.portrait.isEmpty());
        EXPECT_EQ(summary.portrait, summary.picture);
    }
    EXPECT_EQ(IDCardSummary::of(IDCardUtil(nullptr)).gender, "N/A");
    IDCardUtil faceless(nullptr);
    faceless.setPassport(std::make_shared<NFCPassportModel>());
    EXPECT_DEATH((void)IDCardSummary::of(faceless), "portrait");
}

} // namespace
} // namespace kelvara::test
