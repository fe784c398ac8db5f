// The view as a person meets it: how soon it sees, and what a frame on the screen costs.

#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Capture/ReplayCamera.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Vision/VNImageRequestHandler.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <opencv2/core/utility.hpp>

using namespace kelvara;
using namespace kelvara::specimen;

namespace {

std::vector<QImage> crops(QSize size, int count)
{
    std::vector<QImage> made;
    for (int i = 0; i < count; ++i) {
        const auto seed = static_cast<std::uint32_t>(7'000'000 + i);
        made.push_back(photograph(SpecimenData::fromSeed(seed), ordinary(seed, Subject::Front, size)).image);
    }
    return made;
}

/// Rectangle and face requests on one crop, as a front-side frame performs them. The argument: cores to use.
void BM_AnalyseFrontCrop(benchmark::State& state)
{
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const std::vector<QImage> pictures = crops(size, 24);
    const auto detectors = VisionDetectors::native();
    auto rectangles = std::make_shared<VNDetectRectanglesRequest>();
    rectangles->limits = { 1.3F, 1.6F, 0.5F, 1 };
    const std::vector<std::shared_ptr<VNRequest>> requests { rectangles,
        std::make_shared<VNDetectFaceRectanglesRequest>() };
    std::vector<double> times;
    std::size_t next = 0;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        VNImageRequestHandler handler(
            pictures[next++ % pictures.size()], CGImagePropertyOrientation::Up, {}, detectors);
        handler.perform(requests);
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["p99_ms"] = times[times.size() * 99 / 100];
}
BENCHMARK(BM_AnalyseFrontCrop)->Args({ 1000, 700 })->Args({ 798, 562 })->Unit(benchmark::kMillisecond)->MinTime(3);

PlatformServices replayServices(QSize frame)
{
    const auto areas = ScanAreas::of({ 390, 844 }, frame);
    const QImage picture = photograph(SpecimenData::fromSeed(1), areas.held(Subject::Front)).image;
    const auto camera = [&](AVCaptureDevicePosition position) {
        return std::make_shared<ReplayCamera>(
            ReplaySource::still(picture), ReplayCameraOptions { .position = position });
    };
    return { .cameras = std::make_shared<ReplayCameraProvider>(
                 camera(AVCaptureDevicePosition::Back), camera(AVCaptureDevicePosition::Front)),
        .imageAnalysis = VisionDetectors::native(),
        .nfc = nullptr,
        .userDefaults = UserDefaults::inMemory(),
        .masterListURL = {},
        .conference = nullptr };
}

/// From the view's constructor until the first frame's card and face are known on the main thread. The first iteration
/// of the process also loads the face model.
void BM_CreatedToFirstAnalysedFrame(benchmark::State& state)
{
    double worst = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const PlatformServices services = replayServices({ 1080, 1920 });
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        QorvelKycView view(QRectF(0, 0, 390, 844), services);
        view.setViewTypes({ ViewType::idPhoto });
        view.show();
        const auto& d = QorvelKycViewPrivate::of(view);
        while (!d.checkRectangle || !d.checkFace)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
        worst = std::max(worst, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    state.counters["worst_ms"] = worst;
}
BENCHMARK(BM_CreatedToFirstAnalysedFrame)->Unit(benchmark::kMillisecond)->Iterations(5);

/// One repaint of preview, overlay and controls at 1080 × 2340 pixels; the baseline paints the bare frame scaled to it.
void BM_PreviewWithOverlay(benchmark::State& state)
{
    QorvelKycView view(QRectF(0, 0, 1080, 2340), replayServices({ 1080, 1920 }));
    view.setViewTypes({ ViewType::idPhoto });
    view.show();
    auto& d = QorvelKycViewPrivate::of(view);
    while (d.videoPreviewLayer->image().isNull() || !d.isPreviewAdded)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
    view.stopScanning();
    QImage screen(1080, 2340, QImage::Format_RGB32);
    for (auto _ : state)
        view.render(&screen);
}
BENCHMARK(BM_PreviewWithOverlay)->Unit(benchmark::kMillisecond);

void BM_PreviewBaselineSmoothDrawImage(benchmark::State& state)
{
    QImage frame(1080, 1920, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::darkCyan);
    QImage screen(1080, 2340, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&screen);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(-118, 0, 1316, 2340), frame);
    }
}
BENCHMARK(BM_PreviewBaselineSmoothDrawImage)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    cv::setNumThreads(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
