#include "Tests/ChipSheet/SheetRig.h"

#include <QElapsedTimer>
#include <QShortcut>

namespace kelvara::chip {
namespace {

using sheet::SheetPhase;

TEST_F(SheetRig, SlidesUpAndCancelsOnce)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    const int begin = button(sheet)->parentWidget()->y();
    EXPECT_GE(begin, sheet->height() - 1) << "begins below the edge";
    untilUp(sheet);
    EXPECT_EQ(button(sheet)->text(), QString::fromUtf8("İptal"));
    QTest::mouseClick(button(sheet), Qt::LeftButton);
    QTest::keyClick(sheet, Qt::Key_Escape);
    QTest::mouseClick(button(sheet), Qt::LeftButton);
    EXPECT_EQ(cancels, 1);
    sheet->display(message(Kind::successfulRead), QStringLiteral("late"));
    EXPECT_EQ(sheet->phase(), SheetPhase::Present) << "nothing is shown after the end";
    EXPECT_TRUE(untilGone(sheet));
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(QApplication::focusWidget(), focused);
}

TEST_F(SheetRig, SuccessStaysAMomentAndIsNotCancelled)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->display(message(Kind::readingDataGroup, 50), QStringLiteral("half"));
    EXPECT_EQ(sheet->phase(), SheetPhase::Reading);
    sheet->display(message(Kind::successfulRead), QStringLiteral("done"));
    QElapsedTimer clock;
    clock.start();
    QTest::keyClick(focused, Qt::Key_Space); // the host's, which is out of reach
    EXPECT_TRUE(untilGone(sheet));
    EXPECT_GE(clock.elapsed(), ReaderSheet::kSuccessStays.count() - 50);
    EXPECT_EQ(cancels, 0);
}

TEST_F(SheetRig, ErrorStaysUntilClosed)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    sheet->display(failed(Failure::WrongKey), QStringLiteral("wrong"));
    EXPECT_EQ(button(sheet)->text(), QStringLiteral("Kapat"));
    QTest::qWait(int(ReaderSheet::kSuccessStays.count()) + 600);
    ASSERT_TRUE(sheet);
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_TRUE(untilGone(sheet, 2000));
    EXPECT_EQ(cancels, 0) << "closing an error cancels nothing";
}

TEST_F(SheetRig, ErrorGoesByItself)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->display(failed(Failure::Timeout), QStringLiteral("late"));
    EXPECT_TRUE(untilGone(sheet, int(ReaderSheet::kErrorStays.count()) + 5000));
}

TEST_F(SheetRig, CancelledReadJustTakesItAway)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    sheet->display(failed(Failure::UserCancelled), QStringLiteral("cancelled"));
    EXPECT_EQ(sheet->phase(), SheetPhase::Present);
    EXPECT_TRUE(untilGone(sheet, 2000));
    EXPECT_EQ(cancels, 0);
}

TEST_F(SheetRig, DismissedBeforePresentedGoesToo)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->dismiss();
    sheet->present();
    EXPECT_TRUE(untilGone(sheet));
    EXPECT_EQ(QApplication::focusWidget(), focused);
}

TEST_F(SheetRig, DeletedWithinItsSignal)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    QObject::connect(sheet, &ReaderSheet::cancelled, window.get(), [&] { delete sheet; });
    sheet->present();
    QTest::keyClick(button(sheet), Qt::Key_Escape);
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(QApplication::focusWidget(), focused);
}

/// Where in a sheet's life its host goes.
class SheetRigHostGoes : public SheetRig, public testing::WithParamInterface<int>
{ };

TEST_P(SheetRigHostGoes, ViewInTheWindow)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    QTest::qWait(GetParam());
    if (GetParam() > 500)
        sheet->dismiss();
    delete std::exchange(view, nullptr);
    EXPECT_TRUE(!sheet || sheet->isHidden()) << "goes at once";
    EXPECT_TRUE(untilGone(sheet, 2000));
    EXPECT_EQ(cancels, 0);
}

TEST_P(SheetRigHostGoes, WholeWindow)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    QTest::qWait(GetParam());
    if (GetParam() > 500)
        sheet->dismiss();
    window.reset();
    EXPECT_TRUE(sheet.isNull());
    QTest::qWait(300);
    EXPECT_EQ(cancels, 0);
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, SheetRigHostGoes, testing::Values(0, 90, 520));

TEST_F(SheetRig, GoesOnInAHiddenWindow)
{
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    window->hide();
    sheet->display(message(Kind::readingDataGroup, 20), QStringLiteral("reading"));
    window->showMinimized();
    sheet->display(message(Kind::successfulRead), QStringLiteral("done"));
    EXPECT_TRUE(untilGone(sheet));
}

TEST_F(SheetRig, TwoInARowGiveTheFocusBackToTheHost)
{
    const QPointer<ReaderSheet> first = newSheet();
    first->present();
    untilUp(first);
    first->dismiss();
    const QPointer<ReaderSheet> second = newSheet();
    second->present();
    EXPECT_TRUE(untilGone(first));
    ASSERT_TRUE(second);
    EXPECT_EQ(QApplication::focusWidget(), button(second));
    second->dismiss();
    EXPECT_TRUE(untilGone(second));
    EXPECT_EQ(QApplication::focusWidget(), focused);
}

TEST_F(SheetRig, KeepsTheFocusAndTheKeys)
{
    int fired = 0;
    QShortcut shortcut(QKeySequence(Qt::Key_Escape), window.get(), [&] { ++fired; });
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    for (const Qt::Key key : { Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Backtab }) {
        QTest::keyClick(QApplication::focusWidget(), key);
        EXPECT_EQ(QApplication::focusWidget(), button(sheet));
    }
    other->setFocus(); // the host does that in mid-read
    EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == button(sheet); }, 2000));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(untilGone(sheet));
    EXPECT_EQ(QApplication::focusWidget(), other) << "who asked for it meanwhile gets it";
}

TEST_F(SheetRig, TakesTouchesAndFollowsTheWindow)
{
    int clicks = 0;
    QObject::connect(other, &QPushButton::clicked, window.get(), [&] { ++clicks; });
    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    untilUp(sheet);
    const QPoint spot = other->mapTo(window.get(), other->rect().center());
    EXPECT_EQ(window->childAt(spot), sheet);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, spot);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(cancels, 0) << "a touch beside the sheet is no answer";

    const QWidget* const panel = button(sheet)->parentWidget();
    for (const QSize size : { QSize(1200, 800), QSize(320, 500), QSize(700, 400) }) {
        window->resize(size);
        QTest::qWait(20);
        EXPECT_EQ(sheet->size(), size);
        EXPECT_EQ(panel->geometry().bottom(), sheet->rect().bottom());
        EXPECT_LE(panel->width(), 420);
        EXPECT_NEAR(panel->geometry().center().x(), size.width() / 2.0, 1.0);
        EXPECT_GT(panel->y(), 0);
    }
    auto* const late = new QPushButton(QStringLiteral("late"), window.get());
    late->show();
    EXPECT_EQ(window->childAt(late->geometry().center()), sheet);
}

TEST_F(SheetRig, TouchesReachTheButtonAndNoHost)
{
    struct Greedy final : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            touches += event->type() == QEvent::TouchBegin || event->type() == QEvent::MouseButtonPress
                || event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
            return false;
        }
        int touches = 0;
    } greedy;
    for (QWidget* const host : { window.get(), view }) {
        host->setAttribute(Qt::WA_AcceptTouchEvents);
        host->installEventFilter(&greedy);
    }
    const std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
    const auto touch = [&](const QPoint& spot) {
        QTest::touchEvent(window.get(), finger.get()).press(0, spot, window.get());
        QTest::touchEvent(window.get(), finger.get()).release(0, spot, window.get());
    };
    touch({ 200, 300 });
    EXPECT_GT(greedy.touches, 0) << "the host takes them while there is no sheet";
    greedy.touches = 0;

    const QPointer<ReaderSheet> sheet = newSheet();
    sheet->present();
    untilUp(sheet);
    touch({ 200, 20 });
    QTest::keyClick(button(sheet), Qt::Key_A);
    EXPECT_EQ(cancels, 0);
    touch(button(sheet)->mapTo(window.get(), button(sheet)->rect().center()));
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(greedy.touches, 0);
}

TEST_F(SheetRig, StandsStillWhereTheSystemAsksForIt)
{
    const auto bytesOf = [](QWidget* widget) { return widget->grab().toImage(); };
    const auto changes = [&](bool moves) {
        Motion style(moves);
        const QPointer<ReaderSheet> sheet = newSheet();
        sheet->setStyle(&style);
        sheet->present();
        const bool isThere = button(sheet)->parentWidget()->geometry().bottom() == sheet->rect().bottom();
        EXPECT_EQ(isThere, !moves);
        sheet->display(message(Kind::readingDataGroup, 10), QStringLiteral("reading"));
        QTest::qWait(400);
        auto* const picture = sheet->findChild<QWidget*>("illustration");
        const QImage before = bytesOf(picture);
        QTest::qWait(300);
        const bool differs = bytesOf(picture) != before;
        delete sheet;
        return differs;
    };
    EXPECT_TRUE(changes(true));
    EXPECT_FALSE(changes(false));
}

TEST(ReaderSheetWithoutHost, ShowsNothingAndGoes)
{
    const QPointer<ReaderSheet> sheet = new ReaderSheet(nullptr);
    sheet->present();
    sheet->display(message(Kind::readingDataGroup), QStringLiteral("reading"));
    EXPECT_FALSE(sheet->isVisible());
    sheet->dismiss();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet.isNull(); }, 2000));
}

} // namespace
} // namespace kelvara::chip
