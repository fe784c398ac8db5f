// The card search on a cut-out, beside the usual short recipe (Canny, contours, polygons of four corners).

#include "Platform/Vision/CardRectangleDetector.h"
#include "Tools/Evaluate/CannyBaseline.h"

#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <opencv2/core/utility.hpp>
#include <vector>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

constexpr std::array kinds { RectangleScene::Plain, RectangleScene::Keyboard, RectangleScene::TextPage,
    RectangleScene::Desk };
constexpr std::array names { "card", "keyboard", "text page", "desk" };
constexpr int pictureCount = 40;

std::vector<QImage> pictures(RectangleScene kind, QSize size)
{
    std::vector<QImage> made;
    for (std::uint32_t seed = gateSeeds; seed < gateSeeds + pictureCount; ++seed) {
        made.push_back(
            photograph(specimen::SpecimenData::fromSeed(seed), rectangleSceneOptions(kind, seed, size)).image);
    }
    return made;
}

/// One picture after the other, downscaled planes included; the arguments: kind of scene, width, height.
template<typename Detector> void BM_Rectangle(benchmark::State& state)
{
    cv::setNumThreads(1);
    const auto kind = static_cast<std::size_t>(state.range(0));
    const std::vector<QImage> all
        = pictures(kinds[kind], QSize(static_cast<int>(state.range(1)), static_cast<int>(state.range(2))));
    const Detector detector;
    std::vector<double> times;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(detector.detect(VisionImage(all[times.size() % all.size()]), cardLimits));
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["p99_ms"] = times[times.size() * 99 / 100];
    state.SetLabel(names[kind]);
}

void scenes(benchmark::internal::Benchmark* benchmark)
{
    for (std::int64_t kind = 0; kind < std::int64_t { kinds.size() }; ++kind)
        benchmark->Args({ kind, 1000, 700 });
    benchmark->Args({ 0, 798, 562 })->Unit(benchmark::kMillisecond)->MinTime(2);
}

BENCHMARK(BM_Rectangle<CardRectangleDetector>)->Apply(scenes);
BENCHMARK(BM_Rectangle<CannyBaseline>)->Apply(scenes);

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // cards are printed with fonts
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
