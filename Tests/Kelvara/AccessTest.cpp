#include "Tests/Kelvara/Access.h"
#include "Tests/Support/AccessWatch.h"

#include <gmock/gmock.h>

namespace kelvara::test {
namespace {

using enum ViewType;
using Role = QAccessible::Role;

constexpr auto kScan = "T.C. Kimlik kartınızı telefonun arka kısmına yaklaştırın ve Tara butonuna basın.";
constexpr auto kWaiting = "Birazdan müşteri temsilcisine bağlanacaksınız. Lütfen bekleyiniz.";

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
            { { Role::Graphic, "Kartın yerleştirileceği alan" }, { Role::StaticText, kFrontInstruction },
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

} // namespace
} // namespace kelvara::test
