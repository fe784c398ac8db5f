#include "Kelvara/IDCardModel.h"
#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Tests/Kelvara/WidgetTools.h"
#include "Tests/Support/AccessWatch.h"
#include "Tests/Support/KycHarness.h"
#include "Tests/Support/ScriptedConference.h"

#include <QAccessible>
#include <QLineEdit>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;
using Role = QAccessible::Role;

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

constexpr auto kFront = "T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz.";
constexpr auto kTurn = "T.C Kimlik Kartınızın arka yüzünü yukarıda belirtilen alan içerisine yerleştirerek fotoğraf "
                       "çekme butonuna basınız.";
constexpr auto kSelfie = "Selfie çekimi. Yüzünüzü ekranın ortasındaki oval alana yerleştiriniz.";
constexpr auto kNoNfc = "Cihazınızda Nfc desteği bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kScan = "T.C. Kimlik kartınızı telefonun arka kısmına yaklaştırın ve Tara butonuna basın.";
constexpr auto kNoZone = "Kimlik mrz bilgisi bulunamamıştır. Nfc okuması yapılabilmesi için öncelikle kimlik "
                         "bilgilerinin sistem tarafından kaydedilmesi gerekmektedir.";
constexpr auto kWaiting = "Birazdan müşteri temsilcisine bağlanacaksınız. Lütfen bekleyiniz.";
constexpr auto kDone = "Süreç tamamlanmıştır.";
constexpr auto kReady = "Fotoğraf çekmeye hazır.";

/// A phone in a host's window, between two fields of the host's own.
class Access : public testing::Test
{
protected:
    Access()
    {
        Device device = Device::phone();
        device.conference = conference;
        device.hasNfc = true;
        stage = std::make_unique<Stage>(device);
        window.resize(390, 900);
        before = new QLineEdit(&window);
        stage->view->setParent(&window);
        stage->view->move(0, 25);
        stage->view->show();
        after = new QLineEdit(&window);
        after->move(0, 872);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~Access() override { delete stage->view.data(); }

    static QString nameOf(QWidget* widget)
    {
        auto* const interface = widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
        return interface ? interface->text(QAccessible::Name) : QString();
    }
    [[nodiscard]] QWidget* focus() const { return window.focusWidget(); }
    /// The names of what Tab comes to between the host's fields.
    QStringList tabbed(Qt::Key key = Qt::Key_Tab)
    {
        QStringList names;
        QWidget* const first = key == Qt::Key_Tab ? before : after;
        const QWidget* const last = key == Qt::Key_Tab ? after : before;
        first->setFocus();
        for (int press = 0; press < 12; ++press) {
            QTest::keyClick(focus(), key);
            if (focus() == last)
                return names;
            names << nameOf(focus());
        }
        return names << "…";
    }
    /// Until what was gathered has been said.
    static void hear() { QTest::qWait(Announcer::kGatherMilliseconds + 60); }

    std::shared_ptr<ScriptedConference> conference = std::make_shared<ScriptedConference>();
    std::unique_ptr<Stage> stage;
    QWidget window;
    QLineEdit* before = nullptr;
    QLineEdit* after = nullptr;
};

struct Control
{
    Role role;
    const char* name;
    bool isEnabled = true;
};

struct ScreenRow
{
    const char* name;
    QList<ViewType> steps;
    std::vector<Control> controls; ///< What assistive technology is shown, the view's own name apart.
    QStringList tabs;
};

void PrintTo(const ScreenRow& row, std::ostream* out)
{
    *out << row.name;
}

class AccessScreens : public Access, public testing::WithParamInterface<ScreenRow>
{ };

void collect(QAccessibleInterface* parent, QStringList& found)
{
    for (int i = 0; i < parent->childCount(); ++i) {
        QAccessibleInterface* const child = parent->child(i);
        const QAccessible::State state = child->state();
        if (state.invisible)
            continue;
        if (child->role() != Role::Notification)
            found << QStringLiteral("%1 %2%3")
                         .arg(int(child->role()))
                         .arg(child->text(QAccessible::Name), QLatin1String(state.disabled ? " (off)" : ""));
        collect(child, found);
    }
}

TEST_P(AccessScreens, NameEveryControlAndItsRole)
{
    stage->setSteps(GetParam().steps);
    auto* const view = QAccessible::queryAccessibleInterface(stage->view.data());
    ASSERT_TRUE(view);
    EXPECT_EQ(view->role(), Role::Grouping);
    EXPECT_EQ(view->text(QAccessible::Name), text("Kimlik doğrulama"));
    QStringList found;
    collect(view, found);
    QStringList expected;
    for (const Control& control : GetParam().controls)
        expected << QStringLiteral("%1 %2%3")
                        .arg(int(control.role))
                        .arg(text(control.name), QLatin1String(control.isEnabled ? "" : " (off)"));
    found.replaceInStrings(QStringLiteral(" \n"), QStringLiteral(" "));
    found.sort();
    expected.sort();
    EXPECT_EQ(found, expected) << found.join('\n').toStdString();
}

TEST_P(AccessScreens, AreGoneThroughByTabFromTopToBottom)
{
    stage->setSteps(GetParam().steps);
    QStringList expected = GetParam().tabs;
    const QStringList forwards = tabbed();
    EXPECT_EQ(forwards, expected) << forwards.join(", ").toStdString();
    std::ranges::reverse(expected);
    EXPECT_EQ(tabbed(Qt::Key_Backtab), expected);

    // Once more, by what is seen: each lower than the one before, or further to the right.
    before->setFocus();
    QRect last;
    for (int press = 0; press < expected.size(); ++press) {
        QTest::keyClick(focus(), Qt::Key_Tab);
        const QRect now = focus()->geometry();
        EXPECT_TRUE(last.isNull() || now.center().y() > last.center().y() || now.x() > last.x());
        EXPECT_TRUE(qobject_cast<ControlButton*>(focus())->showsFocus());
        last = now;
    }
}

const QString kClose = QStringLiteral("Kapat");

INSTANTIATE_TEST_SUITE_P(All, AccessScreens,
    testing::Values(
        ScreenRow { "card", { idPhoto },
            { { Role::Graphic, "Kartın yerleştirileceği alan" }, { Role::StaticText, kFront },
                { Role::Button, "Fotoğraf çek", false }, { Role::CheckBox, "Flaş" }, { Role::Button, "Kapat" } },
            { kClose, text("Flaş") } },
        ScreenRow { "selfie", { selfie },
            { { Role::Graphic, "Yüzün yerleştirileceği alan" }, { Role::Button, "Fotoğraf çek", false },
                { Role::Button, "Kapat" } },
            { kClose } },
        ScreenRow { "chip", { nfcRead },
            { { Role::StaticText, kScan }, { Role::Button, "Tara" }, { Role::Button, "Kapat" } }, { kClose, "Tara" } },
        ScreenRow { "call", { jitsi },
            { { Role::StaticText, kWaiting }, { Role::Button, "İptal Et" }, { Role::Button, "Kapat" } },
            { kClose, text("İptal Et") } },
        ScreenRow { "information", {},
            { { Role::StaticText, "Sdk içerisine işlem listesi boş gönderilmiştir." }, { Role::Button, "Devam" },
                { Role::Button, "Kapat" } },
            { kClose, "Devam" } }),
    [](const auto& row) { return std::string(row.param.name); });

// --- States and keys

TEST_F(Access, TellsStatesAsTheyChange)
{
    stage->setSteps({ idPhoto });
    AccessWatch watch;
    auto* const shutter = QAccessible::queryAccessibleInterface(stage->d().takePhotoButton);
    auto* const torch = QAccessible::queryAccessibleInterface(stage->d().flashButton);
    EXPECT_TRUE(shutter->state().disabled);
    stage->show(true, true);
    EXPECT_TRUE(spinUntil([&] { return !shutter->state().disabled; }));
    EXPECT_TRUE(watch.stateChanges.contains(text("Fotoğraf çek")));

    EXPECT_TRUE(torch->state().checkable);
    for (const bool on : { true, false }) {
        watch.stateChanges.clear();
        torch->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        EXPECT_EQ(bool(torch->state().checked), on);
        EXPECT_TRUE(watch.stateChanges.contains(text("Flaş")));
    }
    auto* const hint = QAccessible::queryAccessibleInterface(stage->d().flipImageView);
    EXPECT_TRUE(hint->state().invisible);
    ASSERT_TRUE(stage->shoot());
    EXPECT_FALSE(hint->state().invisible);
    EXPECT_EQ(hint->text(QAccessible::Name), text("Kartı çevirin"));
}

TEST_F(Access, KeysPressWhatHasTheFocus)
{
    stage->setSteps({ nfcRead, selfie });
    for (const Qt::Key key : { Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter }) {
        stage->delegate.calls.clear();
        before->setFocus();
        QTest::keyClick(before, Qt::Key_Tab);
        QTest::keyClick(focus(), key);
        EXPECT_EQ(stage->delegate.calls, QStringList { "close" });
    }
}

TEST_F(Access, TheFocusIsOnSomethingAfterEveryStep)
{
    stage->setSteps({ nfcRead });
    stage->d().nfcReadButton->setFocus(Qt::TabFocusReason);
    stage->d().getNextViewType();
    settle();
    EXPECT_EQ(nameOf(focus()), "Devam") << "the new screen's button, at the same place";
    EXPECT_TRUE(stage->d().informationNextButton->showsFocus());
}

TEST_F(Access, WhoPressedTheShutterFindsTheNextButton)
{
    stage->setSteps({ nfcRead, selfie, jitsi });
    stage->d().nfcReadButton->setFocus(Qt::MouseFocusReason);
    stage->view->showSelfieView();
    settle();
    EXPECT_EQ(nameOf(focus()), "Kapat") << "the shutter cannot have it yet";
    EXPECT_FALSE(stage->d().closeButton->showsFocus()) << "nobody used the keyboard";
    stage->show(true, true);
    EXPECT_TRUE(spinUntil([&] { return focus() == stage->d().takePhotoButton; })) << "then it gets it";
    QTest::keyClick(focus(), Qt::Key_Space);
    settle();
    EXPECT_EQ(nameOf(focus()), text("İptal Et")) << "not its neighbour, which had the focus meanwhile";

    before->setFocus();
    stage->view->showNfcView();
    settle();
    EXPECT_EQ(focus(), before) << "the host's own focus stays where it is";
}

TEST_F(Access, NothingBeneathACallTakesTheFocus)
{
    stage->setSteps({ jitsi });
    stage->d().jitsiButton->setFocus(Qt::TabFocusReason);
    stage->view->setJitsiConference("https://meet.example.com", "room", "token");
    QTest::qWait(20);
    EXPECT_EQ(nameOf(focus()), text("Vazgeç"));
    before->setFocus();
    QTest::keyClick(before, Qt::Key_Tab);
    EXPECT_NE(focus(), stage->d().closeButton);
    Q_EMIT conference->page()->joined({});
    QTest::qWait(20);
    Q_EMIT conference->page()->ended({});
    QTest::qWait(20);
    EXPECT_EQ(tabbed(), QStringList { kClose }) << "which is all that is left";
}

// --- Announcements

TEST_F(Access, SaysWhatComesToPassOnce)
{
    AccessWatch watch;
    stage->d().hasNfc = false; // and no zone is waited for
    stage->setSteps({ idPhoto, selfie, nfcRead });
    hear();
    EXPECT_EQ(watch.said, QStringList { text(kFront) });

    stage->show(true, true);
    EXPECT_TRUE(spinUntil([&] { return watch.hasSaid(text(kReady)); }));
    for (int round = 0; round < 5; ++round) {
        stage->view->runTimedCode(); // what was seen grows old, and is seen again
        QTest::qWait(60);
    }
    hear();
    EXPECT_EQ(watch.said, QStringList({ text(kFront), text(kReady) })) << "not with every shake of the hand";

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
    EXPECT_EQ(watch.said, QStringList { text(kDone) });
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
