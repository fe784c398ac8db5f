#include "Tests/Kelvara/Contrast.h"
#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Conference/ConferenceCover.h"
#include "Tests/Kelvara/WidgetTools.h"
#include "Tests/Support/KycHarness.h"

#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

#include <random>

namespace kelvara::test {
namespace {

using enum ViewType;

/// What WCAG 2.1 asks of text (1.4.3), and of what a control is known by (1.4.11).
constexpr double kText = 4.5;
constexpr double kShape = 3;

QImage plain(const QColor& color)
{
    QImage picture(270, 480, QImage::Format_ARGB32_Premultiplied);
    picture.fill(color);
    return picture;
}

/// Black and white in patches of the size of strokes, so that letters meet both everywhere.
QImage busy()
{
    QImage picture = plain(Qt::black);
    std::mt19937 random(7);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, (random() & 1U) != 0 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    }
    return picture;
}

struct Ground
{
    const char* name;
    QImage (*picture)();
};

const Ground kGrounds[] {
    { "white", [] { return plain(Qt::white); } },
    { "black", [] { return plain(Qt::black); } },
    { "grey", [] { return plain(QColor(128, 128, 128)); } },
    { "busy", &busy },
};

/// A view before which a camera holds a picture, in a window that has the same picture for a wall.
class Painted
{
public:
    explicit Painted(const QImage& picture)
    {
        Device device = Device::phone();
        for (auto* camera : { &device.back, &device.front }) {
            ReplayCameraOptions options;
            options.position = (*camera)->position();
            *camera = std::make_shared<ReplayCamera>(ReplaySource::still(picture), options);
        }
        stage = std::make_unique<Stage>(device);
        QPalette wall;
        wall.setBrush(QPalette::Window, QBrush(picture.scaled(390, 844, Qt::IgnoreAspectRatio)));
        window.setPalette(wall);
        window.resize(390, 844);
        stage->view->setParent(&window);
        window.show();
        stage->view->show();
    }
    ~Painted() { delete stage->view.data(); }

    QImage look(double ratio)
    {
        QImage image(window.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        window.render(&image);
        image.setDevicePixelRatio(1);
        return image;
    }
    /// Of the worst text that is seen: its letters to what lies beside them.
    EdgeContrast measure(QWidget& text, double ratio)
    {
        const QRect place(text.mapTo(&window, QPoint()), text.size());
        const QRect pixels(place.topLeft() * ratio, (QSizeF(place.size()) * ratio).toSize());
        return edgeContrast(look(ratio).copy(pixels), painted(text, ratio, Qt::black), ratio);
    }
    /// Until the preview shows the picture, dimmed where the overlay is.
    bool untilShown()
    {
        QTest::qWait(30);
        return spinUntil([&] { return stage->view->isScanning() && !stage->d().inputCGImage.load()->isNull(); });
    }

    std::unique_ptr<Stage> stage;
    QWidget window;
};

class Texts : public testing::TestWithParam<std::tuple<Ground, double, double>>
{ };

TEST_P(Texts, StandOutFromWhateverLiesBehindThem)
{
    const auto& [ground, scale, ratio] = GetParam();
    Painted shown(ground.picture());
    Stage& stage = *shown.stage;
    stage.view->setTextScale(scale);
    struct Row
    {
        const char* name;
        ViewType step;
        QWidget* text;
    };
    stage.view->setViewTypes({ idPhoto });
    for (const Row& row : { Row { "instruction", idPhoto, stage.d().idPhotoLabel },
             Row { "chip", nfcRead, stage.d().nfcReadLabel }, Row { "call", jitsi, stage.d().jitsiLabel } }) {
        stage.d().showViewType(row.step);
        settle();
        if (row.step == idPhoto) {
            ASSERT_TRUE(shown.untilShown());
        }
        const EdgeContrast measured = shown.measure(*row.text, ratio);
        ASSERT_GT(measured.places, 1000U);
        const auto note = [&](const char* what, double value) {
            RecordProperty(std::string(row.name) + what, QString::number(value, 'f', 2).toStdString());
        };
        note("Least", measured.least);
        note("Hundredth", measured.hundredth);
        note("Middle", measured.middle);
        // Over the preview every single pixel; over a host's wall, which ought to be dark but need not, all but a few.
        EXPECT_GE(row.step == idPhoto ? measured.least : measured.hundredth, kText) << row.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Contrast, Texts,
    testing::Combine(testing::ValuesIn(kGrounds), testing::Values(1.0, 2.0), testing::Values(1.0, 2.0, 3.0)),
    [](const auto& row) {
        return QStringLiteral("%1_scale%2_ratio%3")
            .arg(QLatin1String(std::get<0>(row.param).name))
            .arg(std::get<1>(row.param))
            .arg(std::get<2>(row.param))
            .toStdString();
    });

/// The contrast of what is drawn on a ground of one colour: of the pixel that is farthest from the median to it.
double flatContrast(const QImage& look)
{
    std::vector<double> values;
    for (int y = 0; y < look.height(); ++y) {
        for (int x = 0; x < look.width(); ++x)
            values.push_back(luminance(look.pixel(x, y)));
    }
    std::ranges::sort(values);
    const double ground = values[values.size() / 2];
    return std::max(contrast(values.front(), ground), contrast(values.back(), ground));
}

TEST(Contrast, OfWhatHasAGroundOfItsOwn)
{
    constexpr double kRatio = 2;
    Painted shown(plain(Qt::white));
    Stage& stage = *shown.stage;
    stage.view->setViewTypes({ idPhoto });
    settle();
    ASSERT_TRUE(shown.untilShown());
    const auto seen = [&](const QWidget& widget, double share = 1) {
        QRectF place(widget.mapTo(&shown.window, QPoint()), QSizeF(widget.size()));
        const QPointF middle = place.center();
        place.setSize(place.size() * share);
        place.moveCenter(middle);
        const QRect pixels
            = QRectF(place.topLeft() * kRatio, place.size() * kRatio).toAlignedRect() & shown.look(kRatio).rect();
        return shown.look(kRatio).copy(pixels);
    };
    const auto expect = [&](const char* name, double measured, double least) {
        RecordProperty(name, QString::number(measured, 'f', 2).toStdString());
        EXPECT_GE(measured, least) << name;
    };
    // The signs alone, which lie on plates of their own.
    expect("close", flatContrast(seen(*stage.d().closeButton, 0.5)), kShape);
    expect("torch", flatContrast(seen(*stage.d().flashButton, 0.5)), kShape);

    chip::ReaderSheet sheet(stage.view);
    sheet.present();
    QTest::qWait(600);
    for (const char* part : { "title", "message", "button" })
        expect(part, flatContrast(seen(*sheet.findChild<QWidget*>(part))), kText);
    sheet.hide();

    stage.view->showJitsiView();
    settle();
    stage.view->setJitsiConference({}, {}, {});
    QTest::qWait(20);
    auto* const cover = stage.view->findChild<ConferenceCover*>();
    ASSERT_TRUE(cover);
    expect("coverSentence", flatContrast(seen(*cover->findChild<QLabel*>())), kText);
    expect("coverButton", flatContrast(seen(*cover->findChild<QPushButton*>(), 0.8)), kText);
}

} // namespace
} // namespace kelvara::test
