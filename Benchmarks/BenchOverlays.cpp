// What a camera frame costs on the screen: the preview alone, and with the overlay over it as it is composited against
// painting its paths anew. The target is a phone's screen of 1080 × 2340 device pixels. Qt paints large areas on
// several threads: the CPU column counts all of them.
#include "Kelvara/OvalOverlayView.h"
#include "Kelvara/QKCutoutView.h"
#include "Kelvara/StatementLabel.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <memory>

using namespace kelvara;

namespace {

constexpr QSize kScreen(1080, 2340);
constexpr double kRatio = 3;

enum Shape { Card, Oval };

std::unique_ptr<DimmingOverlay> makeOverlay(Shape shape)
{
    std::unique_ptr<DimmingOverlay> overlay;
    if (shape == Card)
        overlay = std::make_unique<QKCutoutView>();
    else
        overlay = std::make_unique<OvalOverlayView>();
    overlay->resize((QSizeF(kScreen) / kRatio).toSize());
    overlay->draw(overlay->rect());
    return overlay;
}

QImage makeScreen()
{
    QImage screen(kScreen, QImage::Format_RGB32);
    screen.setDevicePixelRatio(kRatio);
    screen.fill(Qt::darkCyan);
    return screen;
}

void composite(QPainter& painter, QWidget& widget)
{
    widget.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
}

void paintPaths(QPainter& painter, const DimmingOverlay& overlay)
{
    // The outer half of the stroke, as the mask leaves it.
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(overlay.maskLayer()->path(), DimmingOverlay::backgroundColor());
    painter.setClipPath(overlay.maskLayer()->path());
    painter.strokePath(overlay.firstSublayer()->path(), QPen(Qt::white, overlay.firstSublayer()->lineWidth()));
    painter.restore();
}

void paintPreview(QPainter& painter, const QImage& frame)
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSizeF size = QSizeF(kScreen) / kRatio;
    QRectF source(QPointF(), size.scaled(frame.size(), Qt::KeepAspectRatio));
    source.moveCenter(QRectF(frame.rect()).center());
    painter.drawImage(QRectF(QPointF(), size), frame, source);
}

void overlayComposited(benchmark::State& state)
{
    const auto overlay = makeOverlay(Shape(state.range(0)));
    QImage screen = makeScreen();
    QPainter painter(&screen);
    composite(painter, *overlay);
    for (auto _ : state)
        composite(painter, *overlay);
}

void overlayAsPaths(benchmark::State& state)
{
    const auto overlay = makeOverlay(Shape(state.range(0)));
    QImage screen = makeScreen();
    QPainter painter(&screen);
    for (auto _ : state)
        paintPaths(painter, *overlay);
}

void overlayAsFullImage(benchmark::State& state)
{
    const auto overlay = makeOverlay(Shape(state.range(0)));
    QImage image(kScreen, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(kRatio);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        paintPaths(painter, *overlay);
    }
    QImage screen = makeScreen();
    QPainter painter(&screen);
    for (auto _ : state)
        painter.drawImage(0, 0, image);
}

void borderChangesColour(benchmark::State& state)
{
    const auto overlay = makeOverlay(Shape(state.range(0)));
    QImage screen = makeScreen();
    QPainter painter(&screen);
    bool ready = false;
    for (auto _ : state) {
        ready = !ready;
        overlay->firstSublayer()->setStrokeColor(ready ? QColor(27, 170, 194) : QColor(Qt::white));
        composite(painter, *overlay);
    }
}

void previewAlone(benchmark::State& state)
{
    const QImage frame(1080, 1920, QImage::Format_RGB32);
    QImage screen = makeScreen();
    QPainter painter(&screen);
    for (auto _ : state)
        paintPreview(painter, frame);
}

void previewWithOverlay(benchmark::State& state)
{
    const QImage frame(1080, 1920, QImage::Format_RGB32);
    const auto overlay = makeOverlay(Shape(state.range(0)));
    QImage screen = makeScreen();
    QPainter painter(&screen);
    for (auto _ : state) {
        paintPreview(painter, frame);
        composite(painter, *overlay);
    }
}

void labelComposited(benchmark::State& state)
{
    StatementLabel label;
    QFont font;
    font.setPixelSize(18);
    font.setBold(true);
    label.setNumberOfLines(0);
    label.shape(
        QString::fromUtf8("T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz."), font);
    label.resize(340, label.heightForWidth(340));
    QImage screen = makeScreen();
    QPainter painter(&screen);
    for (auto _ : state)
        composite(painter, label);
}

BENCHMARK(overlayAsPaths)->Arg(Card)->Arg(Oval)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(overlayAsFullImage)->Arg(Card)->Arg(Oval)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(overlayComposited)->Arg(Card)->Arg(Oval)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(borderChangesColour)->Arg(Card)->Arg(Oval)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(previewAlone)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(previewWithOverlay)->Arg(Card)->Arg(Oval)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(labelComposited)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
