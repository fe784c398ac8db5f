// The face search on a card's cut-out and on an oval's, beside the detectors that could stand in its place.

#include "Platform/Vision/NativeFaceDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Specimen/Scene.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#ifdef KELVARA_HAS_DLIB
#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv/cv_image.h>
#endif

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

using namespace kelvara;
using namespace kelvara::specimen;

namespace {

constexpr double baselineSide = 640;

std::vector<QImage> pictures(Subject subject, QSize size)
{
    std::vector<QImage> made;
    for (std::uint32_t seed = 7'100'000; seed < 7'100'024; ++seed)
        made.push_back(photograph(SpecimenData::fromSeed(seed), ordinary(seed, subject, size)).image);
    return made;
}

const std::vector<QImage>& pictures(int kind)
{
    static const std::array<std::vector<QImage>, 3> all = { pictures(Subject::Front, { 1000, 700 }),
        pictures(Subject::Nothing, { 1000, 700 }), pictures(Subject::Selfie, { 540, 720 }) };
    return all[static_cast<std::size_t>(kind)];
}

/// Times `search` on one picture after the other and reports the median and how many showed a face.
void measure(benchmark::State& state, const std::function<bool(const QImage&)>& search)
{
    cv::setNumThreads(1);
    const std::vector<QImage>& all = pictures(static_cast<int>(state.range(0)));
    std::vector<double> times;
    std::size_t found = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        found += search(all[times.size() % all.size()]);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    std::sort(times.begin(), times.end());
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["p95_ms"] = times[times.size() * 95 / 100];
    state.counters["found"] = static_cast<double>(found) / static_cast<double>(times.size());
    state.SetLabel(std::array { "card front", "no face", "selfie" }[static_cast<std::size_t>(state.range(0))]);
}

void BM_NativeFaceDetector(benchmark::State& state)
{
    const auto detector = makeNativeFaceDetector();
    measure(state, [&](const QImage& picture) { return !detector->detect(VisionImage(picture)).empty(); });
}

/// Grey, its longer side 640 pixels.
cv::Mat baselinePlane(const QImage& picture)
{
    const cv::Mat bgra(picture.height(), picture.width(), CV_8UC4, const_cast<uchar*>(picture.constBits()),
        static_cast<std::size_t>(picture.bytesPerLine()));
    cv::Mat gray;
    cv::cvtColor(bgra, gray, cv::COLOR_BGRA2GRAY);
    const double scale = baselineSide / std::max(gray.cols, gray.rows);
    cv::resize(gray, gray, {}, scale, scale, cv::INTER_LINEAR);
    return gray;
}

void BM_BaselineDlibFiveFilters640(benchmark::State& state)
{
#ifdef KELVARA_HAS_DLIB
    dlib::frontal_face_detector detector = dlib::get_frontal_face_detector();
    measure(state, [&](const QImage& picture) {
        const cv::Mat gray = baselinePlane(picture);
        return !detector(dlib::cv_image<unsigned char>(gray)).empty();
    });
#else
    state.SkipWithError("libdlib-dev is not installed");
#endif
}

void BM_BaselineHaarAlt2At640(benchmark::State& state)
{
    cv::CascadeClassifier cascade;
    if (!cascade.load("/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt2.xml")) {
        state.SkipWithError("opencv-data is not installed");
        return;
    }
    constexpr double scaleFactor = 1.1;
    constexpr int neighbours = 5;
    measure(state, [&](const QImage& picture) {
        std::vector<cv::Rect> faces;
        cascade.detectMultiScale(baselinePlane(picture), faces, scaleFactor, neighbours);
        return !faces.empty();
    });
}

/// From nothing to the first answer, in a fresh process the model's loading included: the first iteration's time.
void BM_FirstSearch(benchmark::State& state)
{
    const QImage picture = pictures(0).front();
    double first = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(makeNativeFaceDetector()->detect(VisionImage(picture)));
        if (first == 0)
            first = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    }
    state.counters["first_ms"] = first;
}

BENCHMARK(BM_FirstSearch)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_NativeFaceDetector)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_BaselineDlibFiveFilters640)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_BaselineHaarAlt2At640)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->MinTime(2);

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // cards are printed with fonts
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
