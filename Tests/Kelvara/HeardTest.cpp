#include "Kelvara/IDCardModel.h"
#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Tests/Kelvara/Access.h"
#include "Tests/Support/AccessWatch.h"

#include <gmock/gmock.h>

#include <optional>

namespace kelvara::test {
namespace {

using enum ViewType;

constexpr auto kTurn = "T.C Kimlik Kartınızın arka yüzünü yukarıda belirtilen alan içerisine yerleştirerek fotoğraf "
                       "çekme butonuna basınız.";
constexpr auto kSelfie = "Selfie çekimi. Yüzünüzü ekranın ortasındaki oval alana yerleştiriniz.";
constexpr auto kScan = "T.C. Kimlik kartınızı telefonun arka kısmına yaklaştırın ve Tara butonuna basın.";
constexpr auto kNoZone = "Kimlik mrz bilgisi bulunamamıştır. Nfc okuması yapılabilmesi için öncelikle kimlik "
                         "bilgilerinin sistem tarafından kaydedilmesi gerekmektedir.";
constexpr auto kComplete = "Süreç tamamlanmıştır.";
constexpr auto kReady = "Fotoğraf çekmeye hazır.";

TEST_F(Access, SaysWhatComesToPassOnce)
{
    AccessWatch watch;
    stage->d().hasNfc = false; // and no zone is waited for
    stage->setSteps({ idPhoto, selfie, nfcRead });
    hear();
    EXPECT_EQ(watch.said, QStringList { text(kFrontInstruction) });

    stage->show(true, true);
    EXPECT_TRUE(spinUntil([&] { return watch.hasSaid(text(kReady)); }));
    for (int round = 0; round < 5; ++round) {
        stage->view->runTimedCode(); // what was seen grows old, and is seen again
        QTest::qWait(60);
    }
    hear();
    EXPECT_EQ(watch.said, QStringList({ text(kFrontInstruction), text(kReady) })) << "not with every shake of the hand";

    watch.said.clear();
    ASSERT_TRUE(stage->shoot());
    stage->show(true, false);
    hear();
    EXPECT_EQ(watch.said.value(0).replace(QLatin1Char(' ') + text(kReady), QString()),
        text("Kartın ön yüzü çekildi. ") + text(kTurn));
    EXPECT_TRUE(spinUntil([&] { return watch.hasSaid(text(kReady)); })) << "the other side's";

    watch.said.clear();
    ASSERT_TRUE(stage->shoot());
    stage->show(false, true);
    hear();
    EXPECT_TRUE(watch.said.value(0).startsWith(text("Kartın arka yüzü çekildi. ") + text(kSelfie)))
        << watch.said.join('\n').toStdString();

    watch.said.clear();
    ASSERT_TRUE(stage->shoot());
    hear();
    EXPECT_TRUE(watch.said.value(0).startsWith(text("Selfie çekildi. "))) << watch.said.join('\n').toStdString();

    watch.said.clear();
    QTest::mouseClick(stage->d().nfcReadButton, Qt::LeftButton);
    hear();
    EXPECT_EQ(watch.said, QStringList { text(kComplete) });
    stage->view->showNfcView(); // completion is for good
    hear();
    EXPECT_EQ(watch.said.size(), 1) << "the same again is no news";
}

TEST_F(Access, SaysNothingWhileTheViewIsHidden)
{
    stage->setSteps({ idPhoto });
    hear();
    AccessWatch watch;
    stage->view->hide();
    stage->setSteps({ selfie });
    stage->setSteps({ nfcRead });
    hear();
    EXPECT_TRUE(watch.said.isEmpty());
    stage->view->show();
    hear();
    EXPECT_EQ(watch.said, QStringList { text(kScan) }) << "but then what counts by then";
    QTest::mouseClick(stage->d().nfcReadButton, Qt::LeftButton);
    hear();
    EXPECT_EQ(watch.said.value(1), text(kNoZone));
}

TEST_F(Access, DoesNotCallForAShutterThatIsNotThere)
{
    stage->d().hasNfc = false;
    stage->setSteps({ idPhoto });
    stage->view->setForceNfc(true);
    stage->view->showIdPhotoView(); // and the screen says that this device will not do
    AccessWatch watch;
    stage->show(true, true);
    EXPECT_TRUE(spinUntil([&] { return stage->d().takePhotoButton->isEnabled(); })) << "the camera runs beneath";
    hear();
    EXPECT_FALSE(watch.hasSaid(text(kReady)));
}

TEST_F(Access, SaysHowACallGoes)
{
    stage->setSteps({ jitsi });
    hear();
    AccessWatch watch;
    stage->view->setJitsiConference("https://meet.example.com", "room", "token");
    Q_EMIT conference->page()->joined({});
    hear();
    EXPECT_EQ(watch.said, QStringList({ text("Müşteri temsilcisine bağlanılıyor…"), text("Görüşme başladı.") }));
    Q_EMIT conference->page()->ended({});
    hear();
    EXPECT_EQ(watch.said.value(2), text("Görüşme sona erdi."));

    watch.said.clear();
    stage->view->setJitsiConference("http://meet.example.com", "room", "token");
    hear();
    EXPECT_EQ(watch.said.filter(text("güvenli değil")).size(), 1);
    EXPECT_FALSE(watch.hasSaid(text("sona erdi"))) << "it never began";
}

// --- Whoever hears may act

struct HeardRow
{
    const char* name;
    QAccessible::Event event;
    const char* speaker; ///< Class name.
    std::function<void(Access&, Stage&)> bringAbout;
    const char* words = ""; ///< That the speaker's name must hold.
};

void PrintTo(const HeardRow& row, std::ostream* out)
{
    *out << row.name;
}

class Heard : public Access, public testing::WithParamInterface<HeardRow>
{ };

TEST_P(Heard, TheViewMayBeDeletedByWhoListens)
{
    stage->setSteps({ idPhoto });
    AccessWatch watch;
    watch.during = [&](QAccessibleEvent& event) {
        if (event.type() == GetParam().event && event.object()->inherits(GetParam().speaker)
            && event.accessibleInterface()->text(QAccessible::Name).contains(text(GetParam().words)))
            delete stage->view.data();
    };
    GetParam().bringAbout(*this, *stage);
    EXPECT_TRUE(spinUntil([&] { return stage->view.isNull(); }));
    settle();
}

void announceAScreen(Access&, Stage& stage)
{
    stage.view->showNfcView();
}

void becomeReady(Access&, Stage& stage)
{
    stage.show(true, true);
}

void touchTheTorch(Access&, Stage& stage)
{
    ToggleButton* const torch = stage.d().flashButton;
    QTest::mousePress(torch, Qt::LeftButton, {}, { 12, 12 });
    QTest::mouseRelease(torch, Qt::LeftButton, {}, { 200, 12 }); // not a click, but a change all the same
}

void readAChip(Access&, Stage& stage)
{
    stage.d().readCard(
        IDCardModel(QStringLiteral("L898902C3"), QDate(1974, 8, 12), QDate(2032, 4, 15))); // as after a zone was read
}

void callNobody(Access&, Stage& stage)
{
    stage.setSteps({ jitsi });
    stage.view->setJitsiConference("http://meet.example.com", "room", "token");
}

/// The shutter is on, and whoever hears of it from now on deletes the view.
class ShutterHeard : public Access
{
protected:
    void SetUp() override
    {
        stage->setSteps({ idPhoto });
        stage->show(true, true);
        ASSERT_TRUE(spinUntil([&] { return shutter()->isEnabled(); }));
        watch.emplace();
        watch->during = [this](QAccessibleEvent& event) {
            if (event.type() == QAccessible::StateChanged && event.object() == shutter())
                delete stage->view.data();
        };
    }
    [[nodiscard]] CircleButton* shutter() const { return stage->view ? stage->d().takePhotoButton : nullptr; }

    std::optional<AccessWatch> watch;
};

TEST_F(ShutterHeard, TheViewMayBeDeletedByWhoListensToATap)
{
    QTest::mouseClick(shutter(), Qt::LeftButton);
    EXPECT_TRUE(stage->view.isNull());
    EXPECT_TRUE(stage->delegate.calls.isEmpty()) << stage->delegate.calls.join(' ').toStdString();
    settle();
}

TEST_F(ShutterHeard, TheViewMayBeDeletedByWhoListensToAStepsBegin)
{
    stage->view->showNfcView(); // in which the shutter goes off
    EXPECT_TRUE(stage->view.isNull());
    settle();
}

INSTANTIATE_TEST_SUITE_P(All, Heard,
    testing::Values(HeardRow { "nameOfANotice", QAccessible::NameChanged, "kelvara::Announcer", announceAScreen },
        HeardRow { "notice", QAccessible::Alert, "kelvara::Announcer", announceAScreen },
        HeardRow { "shutter", QAccessible::StateChanged, "kelvara::CircleButton", becomeReady },
        HeardRow { "torch", QAccessible::StateChanged, "kelvara::ToggleButton", touchTheTorch },
        HeardRow { "sheet", QAccessible::Alert, "kelvara::chip::ReaderSheet", readAChip },
        HeardRow { "callName", QAccessible::NameChanged, "kelvara::ConferenceCover", callNobody },
        HeardRow { "call", QAccessible::Alert, "QLabel", callNobody, "güvenli değil" }),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace kelvara::test
