#include "Kelvara/OvalOverlayView.h"
#include "Kelvara/QKCutoutView.h"
#include "Kelvara/ScanView.h"
#include "Tests/Kelvara/WidgetTools.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace kelvara::test {
namespace {

const QColor kBehind(90, 160, 210);

struct CutoutRow
{
    QSize view;
    QRectF card;
    QRectF oval;
};

class Cutouts : public testing::TestWithParam<CutoutRow>
{ };

TEST_P(Cutouts, LieInTheMiddle)
{
    const CutoutRow& row = GetParam();
    QKCutoutView card(QRect(QPoint(), row.view));
    OvalOverlayView oval(QRect(QPoint(), row.view));
    EXPECT_FALSE(card.cutoutRect || oval.overlayFrame);
    EXPECT_FALSE(card.firstSublayer() || oval.firstSublayer());
    card.draw({});
    oval.draw({});
    const auto expectEqual = [](const QRectF& actual, const QRectF& expected) {
        EXPECT_NEAR(actual.x(), expected.x(), 1e-9);
        EXPECT_NEAR(actual.y(), expected.y(), 1e-9);
        EXPECT_NEAR(actual.width(), expected.width(), 1e-9);
        EXPECT_NEAR(actual.height(), expected.height(), 1e-9);
    };
    expectEqual(*card.cutoutRect, row.card);
    expectEqual(*oval.overlayFrame, row.oval);
    QPainterPath cardOutline;
    cardOutline.addRoundedRect(*card.cutoutRect, 3, 3);
    QPainterPath ovalOutline;
    ovalOutline.addEllipse(*oval.overlayFrame);
    for (auto [overlay, outline] :
        { std::pair<DimmingOverlay*, QPainterPath>(&card, cardOutline), { &oval, ovalOutline } }) {
        EXPECT_EQ(overlay->firstSublayer()->path(), outline);
        outline.addRect(overlay->rect());
        outline.setFillRule(Qt::OddEvenFill);
        EXPECT_EQ(overlay->maskLayer()->path(), outline);
    }
    EXPECT_EQ(card.sublayers().size(), 1U);
    card.draw({});
    EXPECT_EQ(card.sublayers().size(), 1U);
    EXPECT_EQ(card.firstSublayer()->lineWidth(), 8.0);
}

constexpr double kUpright = 351 / 1.42;
INSTANTIATE_TEST_SUITE_P(Overlays, Cutouts,
    testing::Values(CutoutRow { { 390, 844 }, { 19.5, (844 - kUpright) / 2, 351, kUpright }, { 45, 222, 300, 400 } },
        CutoutRow { { 844, 390 }, { 214.325, 48.75, 415.35, 292.5 }, { 272, -5, 300, 400 } },
        CutoutRow { { 200, 200 }, { -6.5, 25, 213, 150 }, { -50, -100, 300, 400 } },
        CutoutRow { { 280, 380 }, { 14, (380 - 252 / 1.42) / 2, 252, 252 / 1.42 }, { -10, -10, 300, 400 } }));

std::unique_ptr<DimmingOverlay> makeOverlay(bool card, QWidget* parent)
{
    if (card)
        return std::make_unique<QKCutoutView>(parent);
    return std::make_unique<OvalOverlayView>(parent);
}

/// The overlay as paths say it, without any cleverness: dim, stroke, both clipped by the mask.
QImage paintedByPaths(const DimmingOverlay& overlay, const QPoint& position, const QSize& window, double ratio)
{
    QImage image((QSizeF(window) * ratio).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(kBehind);
    QPainter painter(&image);
    painter.translate(position);
    painter.setClipRect(overlay.rect());
    painter.setClipPath(overlay.maskLayer()->path(), Qt::IntersectClip);
    painter.fillRect(overlay.rect(), QColor(0, 0, 0, 115));
    painter.strokePath(overlay.firstSublayer()->path(), QPen(overlay.firstSublayer()->strokeColor(), 8));
    painter.end();
    image.setDevicePixelRatio(1);
    return image;
}

int difference(QRgb a, QRgb b)
{
    return qMax(qAbs(qRed(a) - qRed(b)), qMax(qAbs(qGreen(a) - qGreen(b)), qAbs(qBlue(a) - qBlue(b))));
}

struct PaintRow
{
    bool card;
    double ratio;
    QSize size;
    QPoint position;
};

class OverlayPainting : public testing::TestWithParam<PaintRow>
{ };

TEST_P(OverlayPainting, ShowsDimBorderAndClearCutout)
{
    const PaintRow& row = GetParam();
    QWidget window;
    window.resize(row.size + QSize(20, 20));
    const auto overlay = makeOverlay(row.card, &window);
    overlay->setGeometry(QRect(row.position, row.size));
    window.show();
    // Another border, then another screen for the same border.
    for (const auto& [stroke, ratio] : { std::pair(QColor(Qt::white), row.ratio),
             std::pair(QColor(27, 170, 194), row.ratio), std::pair(QColor(27, 170, 194), row.ratio + 0.5) }) {
        overlay->firstSublayer()->setStrokeColor(stroke);
        const QImage actual = painted(window, ratio, kBehind);
        const QImage expected = paintedByPaths(*overlay, row.position, window.size(), ratio);
        int compared = 0;
        int wrong = 0;
        for (int y = 2; y < expected.height() - 2; ++y) {
            for (int x = 2; x < expected.width() - 2; ++x) {
                const QRgb pixel = expected.pixel(x, y);
                // Edges are soft in one and hard in the other: look at what lies two pixels off.
                if (pixel != expected.pixel(x - 2, y) || pixel != expected.pixel(x + 2, y)
                    || pixel != expected.pixel(x, y - 2) || pixel != expected.pixel(x, y + 2))
                    continue;
                ++compared;
                wrong += difference(pixel, actual.pixel(x, y)) > 2;
            }
        }
        EXPECT_GT(compared, expected.width() * expected.height() * 0.8);
        EXPECT_EQ(wrong, 0) << "of " << compared;
    }
}

INSTANTIATE_TEST_SUITE_P(Overlays, OverlayPainting,
    testing::Values(PaintRow { true, 1, { 195, 422 }, { 0, 0 } }, PaintRow { true, 2.75, { 195, 422 }, { 7, 3 } },
        PaintRow { true, 1.5, { 301, 170 }, { 5, 11 } }, PaintRow { false, 3, { 390, 500 }, { 0, 0 } },
        PaintRow { false, 1.5, { 391, 500 }, { 3, 7 } }, PaintRow { false, 2, { 280, 380 }, { 10, 10 } }));

TEST(Overlays, DrawOnFirstShowAndOnResizeOnly)
{
    QWidget window;
    window.resize(300, 500);
    auto* overlay = new QKCutoutView(&window);
    QSignalSpy drawn(overlay, &DimmingOverlay::drawn);
    overlay->setGeometry(window.rect());
    EXPECT_EQ(drawn.count(), 0);
    window.show();
    EXPECT_EQ(drawn.count(), 1);

    overlay->firstSublayer()->setStrokeColor(Qt::red);
    for (int again = 0; again < 2; ++again) {
        overlay->hide();
        overlay->show();
        overlay->setParent(nullptr);
        overlay->setParent(&window);
        overlay->show();
        overlay->grab();
    }
    EXPECT_EQ(drawn.count(), 1);
    EXPECT_EQ(overlay->firstSublayer()->strokeColor(), QColor(Qt::red)) << "added anew, the border keeps its colour";

    overlay->resize(500, 300);
    EXPECT_EQ(drawn.count(), 2);
    EXPECT_EQ(overlay->cutoutRect->height(), 225);
    EXPECT_EQ(overlay->firstSublayer()->strokeColor(), QColor(Qt::white));
    EXPECT_EQ(window.childAt(20, 20), nullptr) << "touches pass through";
}

TEST(Overlays, RepaintOnlyWhenTheBorderReallyChanges)
{
    QWidget window;
    window.resize(200, 300);
    auto* overlay = new OvalOverlayView(&window);
    overlay->setGeometry(window.rect());
    window.show();
    struct Counter final : QObject
    {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } counter;
    QCoreApplication::processEvents();
    overlay->installEventFilter(&counter);
    const auto paintsAfter = [&](const QColor& color) {
        overlay->firstSublayer()->setStrokeColor(color);
        QCoreApplication::processEvents();
        return std::exchange(counter.paints, 0);
    };
    EXPECT_EQ(paintsAfter(Qt::white), 0);
    EXPECT_EQ(paintsAfter(Qt::green), 1);
    EXPECT_EQ(paintsAfter(Qt::green), 0);
}

TEST(Overlays, BearAnySizeAndAnyPainter)
{
    for (const bool card : { true, false }) {
        for (const QSize size : { QSize(0, 0), QSize(1, 1), QSize(0, 50), QSize(3, 2) }) {
            const auto overlay = makeOverlay(card, nullptr);
            overlay->resize(size);
            overlay->show();
            overlay->draw({});
            overlay->grab();
            EXPECT_TRUE(overlay->firstSublayer());
        }
        // Turned by a quarter: the corner is dimmed, the middle clear.
        const auto overlay = makeOverlay(card, nullptr);
        overlay->resize(400, 500);
        overlay->draw({});
        QImage image(500, 400, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.translate(500, 0);
        painter.rotate(90);
        overlay->render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
        painter.end();
        EXPECT_EQ(qRed(image.pixel(5, 5)), 140);
        EXPECT_EQ(qRed(image.pixel(250, 200)), 255);
    }
}

TEST(ScanView, IsAFrameOnceShaped)
{
    ScanView view(QRect(0, 0, 60, 40));
    EXPECT_EQ(painted(view, 1, Qt::black).pixel(1, 20), QColor(Qt::black).rgb());
    view.shape();
    const QImage shaped = painted(view, 1, Qt::black);
    for (const int inside : { 0, 2, 57, 59 })
        EXPECT_EQ(shaped.pixel(inside, 20), QColor(Qt::white).rgb()) << inside;
    EXPECT_EQ(shaped.pixel(3, 20), QColor(Qt::black).rgb());
    EXPECT_LT(qRed(shaped.pixel(0, 0)), 40) << "rounded";
}

} // namespace
} // namespace kelvara::test
