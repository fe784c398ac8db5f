#include "Kelvara/ActionButton.h"
#include "Kelvara/CircleButton.h"
#include "Kelvara/FlipImageView.h"
#include "Kelvara/IconButton.h"
#include "Kelvara/ImageCatalog.h"
#include "Kelvara/RoundedButton.h"
#include "Kelvara/ToggleButton.h"
#include "Tests/Kelvara/WidgetTools.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <numbers>

namespace kelvara::test {
namespace {

constexpr double kHalfTurn = std::numbers::pi;

std::optional<UIImage> image(const char* name)
{
    return getMyImage(QLatin1String(name));
}

/// Share of the pixels that differ clearly.
double unlike(const QImage& a, const QImage& b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 16;
    }
    return double(count) / (a.width() * a.height());
}

// --- CircleButton

TEST(CircleButton, SpinsByHalfTurnsUntilToldNotTo)
{
    AnimationClock clock;
    CircleButton button(QRect(0, 0, 70, 70));
    EXPECT_FALSE(button.stopRotate);
    EXPECT_EQ(button.cornerRadius(), 0);
    button.setBackgroundColor(Qt::red);
    button.shapeButton();
    EXPECT_EQ(button.cornerRadius(), 35);
    EXPECT_EQ(button.backgroundColor().alpha(), 0);
    ASSERT_EQ(button.stopRotate, false);

    button.setImage(image("loading_card"));
    button.stopRotate = true;
    button.rotate();
    clock.pass(2500);
    EXPECT_DOUBLE_EQ(button.rotation(), 2 * kHalfTurn);
    button.stopRotate = false;
    clock.pass(300);
    EXPECT_TRUE(button.image()) << "the half turn under way goes to its end";
    clock.pass(300);
    EXPECT_FALSE(button.image());
    clock.pass(3000);
    EXPECT_DOUBLE_EQ(button.rotation(), 3 * kHalfTurn);

    button.rotate();
    button.rotate();
    clock.pass(1100);
    EXPECT_DOUBLE_EQ(button.rotation(), 5 * kHalfTurn) << "a second chain adds to the first";
}

TEST(CircleButton, PaintsItsAngle)
{
    AnimationClock clock;
    CircleButton button(QRect(0, 0, 70, 70));
    button.shapeButton();
    button.setBackgroundImage(image("camera_button_off"));
    button.setImage(image("loading_card"));
    button.show();
    const QImage still = painted(button, 2, Qt::darkGray);
    button.rotate();
    clock.pass(500);
    EXPECT_GT(unlike(painted(button, 2, Qt::darkGray), still), 0.04);
    clock.pass(700);
    EXPECT_FALSE(button.image());
    button.setImage(image("loading_card"));
    EXPECT_DOUBLE_EQ(button.rotation(), kHalfTurn);
    EXPECT_LT(unlike(painted(button, 2, Qt::darkGray), still), 0.005) << "the art is the same upside down";
}

TEST(CircleButton, MayDieWhileItSpins)
{
    AnimationClock clock;
    auto button = std::make_unique<CircleButton>(QRect(0, 0, 70, 70));
    button->shapeButton();
    button->stopRotate = true;
    button->rotate();
    clock.pass(1500);
    button.reset();
    clock.pass(1500);
}

TEST(CircleButtonDeathTest, MustBeShapedBeforeAHalfTurnEnds)
{
    EXPECT_DEATH(
        {
            AnimationClock clock;
            CircleButton button(QRect(0, 0, 70, 70));
            button.rotate();
            clock.pass(1200);
        },
        "Fatal error: .*stopRotate");
}

TEST(Buttons, ArePressedWithinTheirShape)
{
    struct Row
    {
        double radius;
        QPoint position;
        int clicks;
    };
    for (const Row& row : { Row { 0, { 1, 1 }, 1 }, Row { 35, { 1, 1 }, 0 }, Row { 35, { 12, 12 }, 1 },
             Row { 35, { 35, 1 }, 1 }, Row { 35, { 66, 66 }, 0 } }) {
        CircleButton button(QRect(0, 0, 70, 70));
        button.setCornerRadius(row.radius);
        QSignalSpy clicks(&button, &CircleButton::clicked);
        button.show();
        QTest::mouseClick(&button, Qt::LeftButton, {}, row.position);
        EXPECT_EQ(clicks.count(), row.clicks) << row.radius << " at " << row.position.x();
    }
}

TEST(RoundedButton, IsSquareUntilItAwakes)
{
    RoundedButton button(QRect(0, 0, 90, 40));
    EXPECT_EQ(button.cornerRadius(), 0);
    EXPECT_FALSE(button.clipsToBounds());
    button.awakeFromNib();
    EXPECT_EQ(button.cornerRadius(), 15);
    button.setBackgroundImage([] {
        QImage filled(9, 9, QImage::Format_RGB32);
        filled.fill(Qt::red);
        return filled;
    }());
    const QImage look = painted(button, 2, Qt::black);
    EXPECT_EQ(look.pixel(90, 2), QColor(Qt::red).rgb());
    EXPECT_LT(qRed(look.pixel(2, 2)), 10) << "the image is clipped";
}

// --- ToggleButton

struct TouchRow
{
    const char* name;
    std::function<void(ToggleButton&)> touch;
    bool flips;
    int clicks;
};

class Touches : public testing::TestWithParam<TouchRow>
{ };

TEST_P(Touches, FlipTheToggleWhenTheyEnd)
{
    QWidget window;
    window.resize(200, 200);
    auto* button = new ToggleButton(QRect(88, 88, 24, 24), &window);
    button->setOffImage(image("flash-off"));
    button->setOnImage(image("flash"));
    window.show();
    bool onAtClick = false;
    int clicks = 0;
    QObject::connect(button, &ToggleButton::clicked, button, [&] {
        ++clicks;
        onAtClick = button->isOn();
    });
    GetParam().touch(*button);
    EXPECT_EQ(button->isOn(), GetParam().flips);
    EXPECT_EQ(button->backgroundImage()->name(), QLatin1String(GetParam().flips ? "flash" : "flash-off"));
    EXPECT_EQ(clicks, GetParam().clicks);
    EXPECT_EQ(onAtClick, clicks > 0) << "the state flips before the action";
}

void touch(ToggleButton& button, QPoint from, QPoint to, Qt::MouseButton which = Qt::LeftButton)
{
    QTest::mousePress(&button, which, {}, from);
    QTest::mouseMove(&button, to);
    QTest::mouseRelease(&button, which, {}, to);
}

INSTANTIATE_TEST_SUITE_P(Toggle, Touches,
    testing::Values(TouchRow { "inside",
                        [](auto& b) {
                            touch(b, { 12, 12 }, { 14, 12 });
                        },
                        true, 1 },
        TouchRow { "outside",
            [](auto& b) {
                touch(b, { 12, 12 }, { 150, 12 });
            },
            true, 0 },
        TouchRow { "justBeside",
            [](auto& b) {
                touch(b, { 12, 12 }, { 30, 12 });
            },
            true, 1 },
        TouchRow { "otherButton",
            [](auto& b) {
                touch(b, { 12, 12 }, { 12, 12 }, Qt::RightButton);
            },
            false, 0 },
        TouchRow { "space", [](auto& b) { QTest::keyClick(&b, Qt::Key_Space); }, true, 1 },
        TouchRow { "enter", [](auto& b) { QTest::keyClick(&b, Qt::Key_Return); }, true, 1 },
        TouchRow { "assistive",
            [](auto& b) {
                auto* access = QAccessible::queryAccessibleInterface(&b)->actionInterface();
                EXPECT_FALSE(access->actionNames().contains(QAccessibleActionInterface::toggleAction()));
                access->doAction(QAccessibleActionInterface::pressAction());
                EXPECT_TRUE(QAccessible::queryAccessibleInterface(&b)->state().checked);
            },
            true, 1 },
        TouchRow { "takenAway",
            [](auto& b) {
                QTest::mousePress(&b, Qt::LeftButton);
                b.hide();
                b.show();
                QTest::mouseRelease(&b, Qt::LeftButton);
            },
            false, 0 }),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(ToggleButton, ShowsOnlyImagesThatItHas)
{
    ToggleButton button(QRect(0, 0, 24, 24));
    button.setIsOn(true);
    EXPECT_FALSE(button.backgroundImage());
    button.setOffImage(image("flash-off"));
    EXPECT_FALSE(button.backgroundImage()) << "it is on";
    button.setIsOn(false);
    EXPECT_EQ(button.backgroundImage()->name(), QLatin1String("flash-off"));
    button.setIsOn(true);
    EXPECT_EQ(button.backgroundImage()->name(), QLatin1String("flash-off")) << "no image for on";
    button.setBackgroundImage(std::nullopt);
    button.setOnImage(image("flash"));
    EXPECT_EQ(button.backgroundImage()->name(), QLatin1String("flash"));
}

// --- Touch margin, focus

TEST(TouchMargin, LetsPressesCountThatLandCloseToASmallButton)
{
    QWidget window;
    window.resize(200, 200);
    QWidget preview(&window); // Lets presses pass on, as plain widgets do.
    preview.setGeometry(window.rect());
    auto* close = new IconButton(&window);
    close->setGeometry(150, 20, 24, 24);
    auto* other = new IconButton(&window);
    other->setGeometry(180, 20, 10, 24);
    window.show();
    QSignalSpy clicks(close, &IconButton::clicked);
    const auto clicksAt = [&](const QPoint& position) {
        clicks.clear();
        QTest::mouseClick(
            window.childAt(position), Qt::LeftButton, {}, window.childAt(position)->mapFrom(&window, position));
        return clicks.count();
    };
    EXPECT_EQ(clicksAt({ 160, 30 }), 1);
    EXPECT_EQ(clicksAt({ 141, 11 }), 1);
    EXPECT_EQ(clicksAt({ 182, 60 }), 0);
    EXPECT_EQ(clicksAt({ 139, 30 }), 0);
    EXPECT_EQ(clicksAt({ 182, 30 }), 0) << "another button lies there";

    QTest::mousePress(&preview, Qt::LeftButton, {}, { 145, 25 });
    EXPECT_TRUE(close->isDown());
    for (const QPoint& way : { QPoint(100, 80), QPoint(60, 90), QPoint(20, 100) })
        QTest::mouseMove(&preview, way);
    QTest::mouseRelease(&preview, Qt::LeftButton, {}, { 20, 100 });
    EXPECT_FALSE(close->isDown());
    EXPECT_EQ(clicks.count(), 0) << "dragged away";

    close->setEnabled(false);
    EXPECT_EQ(clicksAt({ 145, 25 }), 0);
    close->setEnabled(true);
    close->setMinimumTouchSize(
        { std::numeric_limits<int>::max(), std::numeric_limits<int>::min() }); // as wide as can be
    EXPECT_EQ(clicksAt({ 2, 30 }), 1);
    EXPECT_EQ(clicksAt({ 160, 11 }), 0);
    close->setMinimumTouchSize({ 44, 44 });
    QPointer<IconButton> life(close);
    QObject::connect(close, &IconButton::clicked, close, [close] { delete close; });
    QTest::mouseClick(&preview, Qt::LeftButton, {}, { 145, 25 });
    EXPECT_FALSE(life) << "a host may delete the button in its action";
}

TEST(Focus, ShowsForTheKeyboardAndReturnsToTheShutter)
{
    QWidget window;
    window.resize(200, 100);
    auto* shutter = new CircleButton(QRect(0, 0, 70, 70), &window);
    auto* torch = new ToggleButton(QRect(100, 20, 24, 24), &window);
    window.show();
    QApplication::setActiveWindow(&window);
    const QImage plain = painted(window, 2, Qt::white);
    const auto showsRing = [&] { return unlike(painted(window, 2, Qt::white), plain) > 0.002; };

    shutter->setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(showsRing());
    shutter->setEnabled(false);
    ASSERT_TRUE(torch->hasFocus());
    EXPECT_FALSE(showsRing()) << "moved on by itself, not by the keyboard";
    shutter->setEnabled(true);
    EXPECT_TRUE(shutter->hasFocus());

    QTest::keyClick(&window, Qt::Key_Tab);
    ASSERT_TRUE(torch->hasFocus());
    EXPECT_TRUE(showsRing());
    shutter->setEnabled(false);
    shutter->setEnabled(true);
    EXPECT_TRUE(torch->hasFocus()) << "the shutter takes back only what it had";

    IconButton close(&window);
    close.show();
    shutter->setFocus();
    shutter->setEnabled(false);
    close.setFocus();
    shutter->setEnabled(true);
    EXPECT_TRUE(close.hasFocus()) << "and not what has moved on since";
}

TEST(Focus, ShowsForTheKeyboardAlsoAfterItFellToSomethingElse)
{
    QWidget window;
    auto* form = new QWidget(&window);
    auto* send = new RoundedButton(QRect(0, 0, 70, 30), form);
    auto* field = new QLineEdit(&window); // which the focus falls to; no button of ours
    auto* other = new RoundedButton(QRect(0, 60, 70, 30), &window);
    window.show();
    QApplication::setActiveWindow(&window);
    send->setFocus(Qt::MouseFocusReason);
    form->hide();
    ASSERT_TRUE(field->hasFocus());
    QTest::keyClick(&window, Qt::Key_Tab);
    ASSERT_TRUE(other->hasFocus());
    EXPECT_TRUE(other->showsFocus());
}

TEST(Buttons, HaveALookForEveryState)
{
    ActionButton button;
    button.setTitle(QStringLiteral("Tara & Devam"));
    button.setBackgroundColor({ 27, 170, 194 });
    button.resize(200, 50);
    const QImage plain = painted(button, 2, Qt::black);
    EXPECT_EQ(plain.pixel(100, 12), QColor(27, 170, 194).rgb());
    EXPECT_LT(qGreen(plain.pixel(1, 1)), 30) << "rounded";
    button.setDown(true);
    EXPECT_GT(unlike(painted(button, 2, Qt::black), plain), 0.5);
    button.setDown(false);
    button.setEnabled(false);
    EXPECT_GT(unlike(painted(button, 2, Qt::black), plain), 0.5);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&button)->text(QAccessible::Name), QStringLiteral("Tara & Devam"));
}

// --- FlipImageView

TEST(FlipImageView, TurnsThereAndBackAndHides)
{
    struct Row
    {
        int at;
        double scale;
        double alpha;
    };
    AnimationClock clock;
    FlipImageView view;
    view.resize(80, 80);
    view.setImage(image("flip_h"));
    EXPECT_EQ(view.alpha(), 0);
    EXPECT_EQ(painted(view, 1, Qt::red).pixel(40, 40), QColor(Qt::red).rgb());
    for (int hint = 0; hint < 2; ++hint) {
        view.flip();
        int now = 0;
        for (const Row& row : { Row { 50, 1, 1 }, Row { 400, 1, 1 }, Row { 1250, 0, 1 }, Row { 1675, -0.5, 1 },
                 Row { 2100, -1, 1 }, Row { 2950, 0, 1 }, Row { 3750, 1 - 0.1 / 1.7, 1 }, Row { 3900, -1, 0 } }) {
            clock.pass(row.at - now);
            now = row.at;
            EXPECT_NEAR(view.paintedScale(), row.scale, 0.07) << now;
            EXPECT_EQ(view.alpha(), row.alpha) << now;
        }
        EXPECT_EQ(view.transform(), QTransform::fromScale(-1, 1));
    }
    view.flip();
    clock.pass(2100);
    EXPECT_LT(qRed(painted(view, 1, Qt::red).pixel(5, 40)), 150) << "painted";
    view.flip();
    clock.pass(2000);
    EXPECT_EQ(view.alpha(), 1) << "the first hint's end does not hide the second";
    clock.pass(2000);
    EXPECT_EQ(view.alpha(), 0);
}

} // namespace
} // namespace kelvara::test
