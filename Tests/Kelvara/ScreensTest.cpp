#include "Tests/Support/KycHarness.h"

#include <QFontInfo>

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;

const QColor kCameraColor(27, 170, 194);

/// The controls that are seen, lowest first.
QString stackOf(const Stage& stage)
{
    const QorvelKycViewPrivate& d = stage.d();
    const QHash<const QObject*, QString> names { { d.cutoutView, "cutout" }, { d.cutoutSelfieView, "oval" },
        { d.takePhotoButton, "shutter" }, { d.flashButton, "flash" }, { d.idPhotoLabel, "statement" },
        { d.flipImageView, "flip" }, { d.closeButton, "close" }, { d.nfcReadLabel, "chipText" },
        { d.nfcReadButton, "read" }, { d.jitsiLabel, "callText" }, { d.jitsiButton, "cancel" },
        { d.informationLabel, "information" }, { d.informationNextButton, "next" } };
    QStringList seen;
    for (const QObject* child : stage.view->children()) {
        if (child == d.announcer) // for those who do not see
            continue;
        const auto* control = qobject_cast<const QWidget*>(child);
        if (control && stage.isShown(control))
            seen << names.value(control, QString::fromLatin1(child->metaObject()->className()));
    }
    return seen.join(u' ');
}

struct ScreenRow
{
    const char* name;
    ViewType step;
    bool isBlocked;
    const char* stack;
    bool preview;
};

constexpr ScreenRow kScreens[] = {
    { "card", idPhoto, false, "cutout shutter flash statement flip close", true },
    { "selfie", selfie, false, "oval shutter close", true },
    { "chip", nfcRead, false, "chipText read close", false },
    { "call", jitsi, false, "callText cancel close", false },
    { "information", idPhoto, true, "information next close", false },
};

void compose(Stage& stage, const ScreenRow& row)
{
    stage.view->setForceNfc(row.isBlocked);
    stage.setSteps({ row.step });
}

TEST(Composition, HoldTheirControlsAndNoneOfTheScreenBefore)
{
    Stage stage;
    for (const ScreenRow& before : kScreens) {
        for (const ScreenRow& row : kScreens) {
            SCOPED_TRACE(std::string(before.name) + " to " + row.name);
            compose(stage, before);
            compose(stage, row);
            EXPECT_EQ(stackOf(stage), row.stack);
            EXPECT_EQ(stage.d().isPreviewAdded, row.preview);
            EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
        }
    }
}

TEST(Composition, LayTheirControlsOut)
{
    Stage stage;
    for (const ScreenRow& row : kScreens)
        compose(stage, row);
    const QorvelKycViewPrivate& d = stage.d();
    const std::pair<const QWidget*, QRect> places[] = {
        { d.cutoutView, { 0, 0, 390, 844 } },
        { d.cutoutSelfieView, { 0, 0, 390, 844 } },
        { d.jitsiMeetView, { 0, 0, 390, 844 } },
        { d.closeButton, { 346, 20, 24, 24 } },
        { d.takePhotoButton, { 160, 744, 70, 70 } },
        { d.flashButton, { 260, 767, 24, 24 } },
        { d.flipImageView, { 155, 382, 80, 80 } },
        { d.informationNextButton, { 30, 764, 330, 50 } },
        { d.nfcReadButton, { 30, 764, 330, 50 } },
        { d.jitsiButton, { 30, 764, 330, 50 } },
    };
    for (const auto& [control, place] : places)
        EXPECT_EQ(control->geometry(), place) << control->metaObject()->className();
    const auto expectWidth = [](const StatementLabel* label) {
        EXPECT_EQ(label->x(), 10);
        EXPECT_EQ(label->width(), 370);
        EXPECT_EQ(label->height(), label->heightForWidth(370));
        EXPECT_GT(label->height(), 15);
    };
    for (const StatementLabel* label : { d.informationLabel, d.nfcReadLabel, d.jitsiLabel }) {
        expectWidth(label);
        EXPECT_NEAR(label->y() + label->height() / 2.0, 422, 0.5);
    }
    expectWidth(d.idPhotoLabel);
    EXPECT_EQ(d.idPhotoLabel->y() + d.idPhotoLabel->height(), 744 - 30);
}

TEST(Composition, DressTheirControls)
{
    for (const bool hasNfc : { true, false }) {
        Device device = Device::phone();
        device.hasNfc = hasNfc;
        Stage stage(device);
        stage.setSteps({ nfcRead });
        stage.d().getNextViewType(); // the end, which is told by the information screen
        settle();
        const QorvelKycViewPrivate& d = stage.d();
        const std::pair<const StatementLabel*, int> labels[]
            = { { d.idPhotoLabel, 18 }, { d.nfcReadLabel, 15 }, { d.jitsiLabel, 15 }, { d.informationLabel, 15 } };
        for (const auto& [label, size] : labels) {
            SCOPED_TRACE(label->text().toStdString());
            EXPECT_EQ(QFontInfo(label->font()).pixelSize(), size);
            EXPECT_EQ(label->font().weight(), QFont::Bold);
            EXPECT_EQ(label->textColor(), QColor(Qt::white));
            EXPECT_EQ(label->numberOfLines(), 0);
        }
        const std::pair<const ActionButton*, const char*> buttons[] = { { d.nfcReadButton, hasNfc ? "Tara" : "Devam" },
            { d.informationNextButton, "Devam" }, { d.jitsiButton, "İptal Et" } };
        for (const auto& [button, title] : buttons) {
            SCOPED_TRACE(title);
            EXPECT_EQ(button->title(), QString::fromUtf8(title));
            EXPECT_EQ(button->titleColor(), QColor(Qt::white));
            EXPECT_EQ(button->backgroundColor(), kCameraColor);
            EXPECT_EQ(QFontInfo(button->font()).pixelSize(), 17);
            EXPECT_EQ(button->font().weight(), QFont::DemiBold);
            EXPECT_EQ(button->cornerRadius(), 8);
            EXPECT_TRUE(button->clipsToBounds());
        }
    }
}

TEST(Composition, ShowTheirPictures)
{
    Stage stage;
    stage.setSteps({ idPhoto });
    const QorvelKycViewPrivate& d = stage.d();
    const std::pair<std::optional<ControlImage>, const char*> pictures[] = {
        { d.takePhotoButton->backgroundImage(), "camera_button_off" },
        { d.closeButton->backgroundImage(), "cancel" },
        { d.flashButton->offImage(), "flash-off" },
        { d.flashButton->onImage(), "flash" },
        { d.flashButton->backgroundImage(), "flash-off" },
        { d.flipImageView->image(), "flip_h" },
    };
    for (const auto& [picture, name] : pictures) {
        ASSERT_TRUE(picture) << name;
        EXPECT_EQ(picture->name(), QLatin1String(name));
    }
    EXPECT_FALSE(d.takePhotoButton->image() || d.closeButton->image());
    EXPECT_FALSE(d.flashButton->isOn());
    EXPECT_EQ(d.flipImageView->alpha(), 0);
}

TEST(Composition, LookAnewEveryTwoSeconds)
{
    Stage stage;
    const QTimer* timer = stage.d().refreshTimer;
    EXPECT_TRUE(timer->isActive());
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_EQ(timer->interval(), 2000);
}

} // namespace
} // namespace kelvara::test
