// The search for the machine-readable zone's lines on a cut-out, beside the usual short recipe (gradient, closing,
// contours of wide boxes).

#include "Platform/Vision/TextLineDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Platform/Vision/VisionPlanes.h"
#include "Tools/Evaluate/RectangleScenes.h"
#include "Tools/Evaluate/TextScenes.h"

#include <QGuiApplication>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

constexpr int kPictures = 40;

class GradientBaseline final : public TextRectangleDetector
{
public:
    [[nodiscard]] std::vector<VNTextObservation> detect(const VisionImage& image) const override
    {
        const cv::Mat& luma = image.planes().luma(0);
        cv::Mat ink;
        cv::morphologyEx(luma, ink, cv::MORPH_BLACKHAT, cv::getStructuringElement(cv::MORPH_RECT, { 25, 13 }));
        cv::Mat gradient;
        cv::Sobel(ink, gradient, CV_32F, 1, 0, -1);
        cv::convertScaleAbs(gradient, gradient);
        cv::morphologyEx(gradient, gradient, cv::MORPH_CLOSE, cv::getStructuringElement(cv::MORPH_RECT, { 35, 9 }));
        cv::Mat mask;
        cv::threshold(gradient, mask, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
        cv::erode(mask, mask, {}, { -1, -1 }, 2);
        std::vector<std::vector<cv::Point>> contours;
        cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
        std::vector<VNTextObservation> lines;
        for (const auto& contour : contours) {
            const cv::Rect box = cv::boundingRect(contour);
            if (box.width < 5 * box.height || box.width < luma.cols / 2)
                continue;
            VNTextObservation line;
            line.boundingBox = QRectF(static_cast<double>(box.x) / luma.cols,
                1 - static_cast<double>(box.y + box.height) / luma.rows, static_cast<double>(box.width) / luma.cols,
                static_cast<double>(box.height) / luma.rows);
            lines.push_back(line);
        }
        return lines;
    }
};

/// One picture after the other, downscaled planes included; the arguments: whether it is a card's back, width, height.
template<typename Detector> void BM_Text(benchmark::State& state)
{
    cv::setNumThreads(1);
    const bool isBack = state.range(0) != 0;
    const QSize size(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    std::vector<QImage> all;
    std::vector<QRectF> zones;
    for (std::uint32_t seed = gateSeeds; seed < gateSeeds + kPictures; ++seed) {
        const auto options
            = isBack ? nearBack(seed, size) : rectangleSceneOptions(RectangleScene::TextPage, seed, size);
        const specimen::Scene scene = photograph(specimen::SpecimenData::fromSeed(seed), options);
        all.push_back(scene.image);
        zones.push_back(isBack ? zoneIn(scene) : QRectF());
    }
    const Detector detector;
    std::vector<double> times;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(detector.detect(VisionImage(all[times.size() % all.size()])));
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    int right = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const QRectF band = wideBand(detector.detect(VisionImage(all[i])), size);
        right += isBack ? band.adjusted(-3, -3, 3, 3).contains(zones[i]) : band.isNull();
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["p99_ms"] = times[times.size() * 99 / 100];
    state.counters["right"] = static_cast<double>(right) / kPictures;
    state.SetLabel(isBack ? "card's back" : "text page");
}

void scenes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({ 1, 1000, 700 })->Args({ 0, 1000, 700 })->Args({ 1, 798, 562 });
    benchmark->Unit(benchmark::kMillisecond)->MinTime(2);
}

BENCHMARK(BM_Text<TextLineDetector>)->Apply(scenes);
BENCHMARK(BM_Text<GradientBaseline>)->Apply(scenes);

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // cards are printed with fonts
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
