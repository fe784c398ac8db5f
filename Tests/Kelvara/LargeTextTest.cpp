#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Platform/Conference/ConferenceCover.h"
#include "Tests/Support/KycHarness.h"
#include "Tests/Support/ScriptedConference.h"

#include <QFontInfo>
#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;

struct Situation
{
    const char* name;
    std::function<void(Stage&)> open;
    bool isFull; ///< At 390 × 844 its letters are as large as was asked for.
};

void PrintTo(const Situation& situation, std::ostream* out)
{
    *out << situation.name;
}

void photographFront(Stage& stage)
{
    stage.setSteps({ idPhoto });
    stage.show(true, true);
    EXPECT_TRUE(stage.shoot());
    settle();
}

const Situation kSituations[] {
    { "front", [](Stage& stage) { stage.setSteps({ idPhoto }); }, false },
    { "back", photographFront, false },
    { "selfie", [](Stage& stage) { stage.setSteps({ selfie }); }, true },
    { "chip", [](Stage& stage) { stage.setSteps({ nfcRead }); }, true },
    { "chipWithoutZone",
        [](Stage& stage) {
            stage.setSteps({ nfcRead });
            QTest::mouseClick(stage.d().nfcReadButton, Qt::LeftButton);
        },
        true },
    { "call", [](Stage& stage) { stage.setSteps({ jitsi }); }, true },
    { "noSteps", [](Stage& stage) { stage.setSteps({}); }, true },
    { "finished",
        [](Stage& stage) {
            stage.setSteps({ selfie });
            stage.d().getNextViewType();
        },
        true },
    { "connecting",
        [](Stage& stage) {
            stage.setSteps({ jitsi });
            stage.view->setJitsiConference("https://meet.example.com", "room", "token");
        },
        true },
    { "insecure",
        [](Stage& stage) {
            stage.setSteps({ jitsi });
            stage.view->setJitsiConference("http://meet.example.com", "room", "token");
        },
        true },
};

struct Screen
{
    QSize size;
    double scale;
};

class LargeText : public testing::TestWithParam<std::tuple<Situation, Screen>>
{
protected:
    /// Texts and buttons that a person sees, with their places in the view.
    [[nodiscard]] static QList<QWidget*> seen(const Stage& stage)
    {
        QList<QWidget*> found;
        const auto* const cover = stage.view->findChild<ConferenceCover*>();
        for (auto* widget : stage.view->findChildren<QWidget*>()) {
            const bool isText = qobject_cast<QLabel*>(widget) || qobject_cast<QAbstractButton*>(widget);
            if (isText && widget->isVisibleTo(stage.view) && (!cover || cover->isAncestorOf(widget)))
                found << widget;
        }
        return found;
    }
    [[nodiscard]] static QRect place(const Stage& stage, const QWidget* widget)
    {
        return { widget->mapTo(stage.view, QPoint()), widget->size() };
    }
};

TEST_P(LargeText, IsNeitherCutNorLiesOnAnything)
{
    const auto& [situation, screen] = GetParam();
    Device device = Device::phone();
    device.terminal = std::make_shared<chip::software::SoftwareTerminal>();
    const auto conference = std::make_shared<ScriptedConference>();
    device.conference = conference;
    Stage stage(device, screen.size);
    situation.open(stage);
    stage.view->setTextScale(screen.scale);
    QTest::qWait(20);

    const QList<QWidget*> all = seen(stage);
    ASSERT_FALSE(all.isEmpty());
    for (const QWidget* widget : all) {
        const QRect where = place(stage, widget);
        EXPECT_TRUE(stage.view->rect().contains(where)) << widget->metaObject()->className();
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
        }
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            const int letters = button->fontMetrics().horizontalAdvance(button->text());
            EXPECT_GE(button->width(), letters > 0 ? letters + 32 : 24);
            EXPECT_GE(button->height(), button->text().isEmpty() ? 24 : button->fontMetrics().height());
        }
        for (const QWidget* other : all)
            EXPECT_TRUE(other == widget || !where.intersects(place(stage, other)))
                << widget->metaObject()->className() << " on " << other->metaObject()->className();
    }
    const StatementLabel* instruction = stage.d().idPhotoLabel;
    if (instruction->isVisible() && screen.size.height() > screen.size.width()) {
        EXPECT_GE(instruction->y(), stage.d().cutoutView->cutoutRect->bottom() + 4);
    }

    for (const QLabel* label : stage.view->findChildren<QLabel*>()) {
        if (!all.contains(label))
            continue;
        const int ordinary = label == instruction ? 18 : label->parentWidget() == stage.view ? 15 : 17;
        const int letters = QFontInfo(label->font()).pixelSize();
        EXPECT_GE(letters, ordinary);
        if (situation.isFull && screen.scale <= 2 && screen.size == QSize(390, 844)) {
            EXPECT_EQ(letters, qRound(ordinary * screen.scale));
        } else if (screen.scale > 1 && screen.size == QSize(390, 844)) {
            EXPECT_GT(letters, ordinary) << "there is some room";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, LargeText,
    testing::Combine(testing::ValuesIn(kSituations),
        testing::Values(Screen { { 390, 844 }, 1 }, Screen { { 390, 844 }, 2 }, Screen { { 390, 844 }, 3 },
            Screen { { 360, 640 }, 2 }, Screen { { 844, 390 }, 2 })),
    [](const auto& row) {
        const Screen& screen = std::get<1>(row.param);
        return QStringLiteral("%1_%2x%3_%4")
            .arg(QLatin1String(std::get<0>(row.param).name))
            .arg(screen.size.width())
            .arg(screen.size.height())
            .arg(qRound(screen.scale))
            .toStdString();
    });

} // namespace
} // namespace kelvara::test
