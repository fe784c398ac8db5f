// The capture room's hot paths at 1920×1080, each beside the plain way to do the same.

#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"
#include "Platform/Capture/FrameTurner.h"
#include "Platform/Capture/QtFrame.h"
#include "Platform/Capture/ReplayLayout.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QVideoFrame>
#include <QVideoFrameFormat>
#include <benchmark/benchmark.h>

#include <cstring>

namespace kelvara {
namespace {

const QSize kCamera(1920, 1080);
const QSize kScreen(1080, 2340);

QImage scene(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb((x * 7 + y) & 255, (x ^ y) & 255, (x + y * 5) & 255));
    return image;
}

CVPixelBuffer bufferOf(const QImage& image)
{
    const auto owner = std::make_shared<const QImage>(image);
    return CVPixelBuffer(
        owner, owner->constBits(), owner->width(), owner->height(), static_cast<std::size_t>(owner->bytesPerLine()));
}

/// A picture in a layout, as often as frames of it are wanted.
struct LaidOut
{
    LaidOut(ReplayPixelLayout layout, QVideoFrameFormat::PixelFormat pixels)
        : format(kCamera, pixels), raw(layOut(bufferOf(scene(kCamera)), layout, 0, bytes))
    { }

    [[nodiscard]] QVideoFrame frame() const
    {
        QVideoFrame made(format);
        if (!made.map(QVideoFrame::WriteOnly))
            return made;
        for (int plane = 0; plane < made.planeCount(); ++plane) {
            const FramePlane& from = raw.planes[static_cast<std::size_t>(plane)];
            for (std::size_t row = 0; row < from.size / from.bytesPerRow; ++row)
                std::memcpy(made.bits(plane) + row * static_cast<std::size_t>(made.bytesPerLine(plane)),
                    from.bytes + row * from.bytesPerRow, from.bytesPerRow);
        }
        made.unmap();
        return made;
    }

    QVideoFrameFormat format;
    std::vector<std::uint8_t> bytes;
    RawFrame raw;
};

void convertFrame(benchmark::State& state, ReplayPixelLayout layout, QVideoFrameFormat::PixelFormat format)
{
    const QVideoFrame frame = LaidOut(layout, format).frame();
    FrameConverter converter;
    for (auto _ : state)
        benchmark::DoNotOptimize(pictureOf(frame, converter));
}

void convertFrameBaselineToImage(
    benchmark::State& state, ReplayPixelLayout layout, QVideoFrameFormat::PixelFormat format)
{
    const LaidOut laidOut(layout, format);
    for (auto _ : state) {
        // A frame remembers its image; a camera's comes new each time.
        state.PauseTiming();
        const QVideoFrame frame = laidOut.frame();
        state.ResumeTiming();
        benchmark::DoNotOptimize(frame.toImage().convertToFormat(QImage::Format_RGB32));
    }
}

void convertJpeg(benchmark::State& state)
{
    std::vector<std::uint8_t> bytes;
    const RawFrame raw = layOut(bufferOf(scene(kCamera)), ReplayPixelLayout::MJPEG, 0, bytes);
    FrameConverter converter;
    for (auto _ : state)
        benchmark::DoNotOptimize(converter.convert(raw));
}

void convertJpegBaselineQImage(benchmark::State& state)
{
    std::vector<std::uint8_t> bytes;
    const RawFrame raw = layOut(bufferOf(scene(kCamera)), ReplayPixelLayout::MJPEG, 0, bytes);
    for (auto _ : state)
        benchmark::DoNotOptimize(QImage::fromData(raw.planes[0].bytes, static_cast<int>(raw.planes[0].size))
                                     .convertToFormat(QImage::Format_RGB32));
}

void layOutFrame(benchmark::State& state, ReplayPixelLayout layout)
{
    const CVPixelBuffer picture = bufferOf(scene(kCamera));
    std::vector<std::uint8_t> bytes;
    for (auto _ : state)
        benchmark::DoNotOptimize(layOut(picture, layout, 0, bytes));
}

void turn(benchmark::State& state)
{
    const CVPixelBuffer picture = bufferOf(scene(kCamera));
    FrameBufferPool pool;
    for (auto _ : state)
        benchmark::DoNotOptimize(turnedPicture(picture, static_cast<int>(state.range(0)), state.range(1) != 0, pool));
}

void turnBaselineQImage(benchmark::State& state)
{
    const QImage image = scene(kCamera);
    QTransform transform;
    transform.scale(state.range(1) != 0 ? -1 : 1, 1);
    transform.rotate(static_cast<double>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(image.transformed(transform));
}

/// The preview and over it what a capture screen lays: everything dimmed but a rounded cut-out with a border.
void paintOverlay(QPainter& painter)
{
    QPainterPath path;
    path.addRect(QRectF(QPointF(), kScreen));
    path.addRoundedRect(QRectF(60, 800, 960, 600), 30, 30);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, QColor(0, 0, 0, 153));
    painter.setPen(QPen(Qt::white, 6));
    painter.drawRoundedRect(QRectF(60, 800, 960, 600), 30, 30);
}

struct Layer
{
    Layer(const QImage& image, bool front)
    {
        layer.setVideoGravity(AVLayerVideoGravity::ResizeAspectFill);
        layer.setFrame(QRectF(QPointF(), kScreen));
        layer.inputChanged(true, front, 0);
        layer.deliver(CMSampleBuffer(bufferOf(image)));
    }
    AVCaptureVideoPreviewLayer layer;
};

QSize shownSize(const benchmark::State& state)
{
    return state.range(0) != 0 ? kCamera.transposed() : kCamera;
}

void paintPreview(benchmark::State& state, bool front, bool overlay)
{
    Layer shown(scene(shownSize(state)), front);
    QImage screen(kScreen, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&screen);
        shown.layer.paint(painter);
        if (overlay)
            paintOverlay(painter);
    }
}

void paintPreviewBaselineDrawImage(benchmark::State& state, bool front)
{
    const QImage image = scene(shownSize(state));
    QImage screen(kScreen, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&screen);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QSizeF size = QSizeF(image.size()).scaled(kScreen, Qt::KeepAspectRatioByExpanding);
        QRectF place(QPointF(), size);
        place.moveCenter(QRectF(QPointF(), kScreen).center());
        painter.drawImage(place, front ? image.mirrored(true, false) : image);
    }
}

using Format = QVideoFrameFormat;

void registerAll()
{
    const auto add = [](const std::string& name, auto run) {
        return benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond)->UseRealTime();
    };
    const std::tuple<const char*, ReplayPixelLayout, Format::PixelFormat> layouts[]
        = { { "NV12", ReplayPixelLayout::NV12, Format::Format_NV12 },
              { "I420", ReplayPixelLayout::I420, Format::Format_YUV420P },
              { "YUYV", ReplayPixelLayout::YUYV, Format::Format_YUYV },
              { "BGRA", ReplayPixelLayout::BGRA, Format::Format_BGRX8888 } };
    for (const auto& [name, layout, format] : layouts) {
        add(std::string("convert/") + name, [=](auto& state) { convertFrame(state, layout, format); });
        add(std::string("convert/") + name + "/baseline:toImage",
            [=](auto& state) { convertFrameBaselineToImage(state, layout, format); });
    }
    add("convert/MJPEG", convertJpeg);
    add("convert/MJPEG/baseline:QImage", convertJpegBaselineQImage);
    for (const auto& [name, layout, format] : layouts)
        add(std::string("layOut/") + name, [=](auto& state) { layOutFrame(state, layout); });
    for (const int mirrored : { 0, 1 })
        for (const int degrees : { 0, 90, 180, 270 }) {
            if (degrees == 0 && mirrored == 0)
                continue;
            add("turn", turn)->Args({ degrees, mirrored });
            add("turn/baseline:transformed", turnBaselineQImage)->Args({ degrees, mirrored });
        }
    for (const bool front : { false, true }) {
        const std::string name = front ? "preview/front" : "preview/back";
        for (const int portrait : { 0, 1 }) {
            add(name, [=](auto& state) { paintPreview(state, front, false); })->Arg(portrait);
            add(name + "/overlay", [=](auto& state) { paintPreview(state, front, true); })->Arg(portrait);
            add(name + "/baseline:drawImage", [=](auto& state) {
                paintPreviewBaselineDrawImage(state, front);
            })->Arg(portrait);
        }
    }
}

} // namespace
} // namespace kelvara

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    kelvara::registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
