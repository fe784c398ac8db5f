// What is done to pictures between the camera and the record, each beside the plain way to do the same. Both ways run
// by turns, so that whatever else the machine does befalls both alike; a benchmark's time is ours, and its counters
// give the medians of both in milliseconds and how many times sooner ours is done.

#include "Kelvara/CIImageLuminance.h"
#include "Kelvara/ImageFormat.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/CIContext.h"
#include "Tools/Specimen/Scene.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <vector>

using namespace kelvara;
using namespace kelvara::specimen;

namespace {

const QSize kPicture(1080, 760);

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

/// Runs both by turns, each `repeats` times in a row: what takes less than a microsecond is not timed singly.
void compare(
    benchmark::State& state, const std::function<void()>& ours, const std::function<void()>& baseline, int repeats = 1)
{
    const auto seconds = [repeats](const std::function<void()>& work) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < repeats; ++i)
            work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() / repeats;
    };
    std::vector<double> times;
    std::vector<double> baselineTimes;
    for (auto _ : state) {
        baselineTimes.push_back(seconds(baseline));
        times.push_back(seconds(ours));
        state.SetIterationTime(times.back());
    }
    constexpr double milli = 1000;
    state.counters["ours_ms"] = median(times) * milli;
    state.counters["baseline_ms"] = median(baselineTimes) * milli;
    state.counters["times_sooner"] = median(baselineTimes) / median(times);
}

/// A card as a sharp camera sees it, and what the cut-out keeps of it.
struct Tap
{
    UIImage whole;
    UIImage part;
};

Tap tap(Subject subject, double noise)
{
    SceneOptions options;
    options.seed = 4'200'000;
    options.size = kPicture;
    options.subject = subject;
    options.background = Background::Wood;
    options.fill = subject == Subject::Selfie ? 0.6 : 0.8;
    options.shadow = 0.3;
    options.noise = noise;
    const QImage whole = photograph(SpecimenData::fromSeed(options.seed), options).image;
    return { UIImage(whole), UIImage(cropping(whole, QRectF(110, 105, 860, 550)).value_or(QImage())) };
}

QString usualPngBase64(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return QString::fromLatin1(buffer.data().toBase64());
}

void tapTexts(benchmark::State& state, Subject subject, double noise)
{
    const Tap pictures = tap(subject, noise);
    if (pictures.part.isNull()) {
        state.SkipWithError("no picture could be taken");
        return;
    }
    qsizetype size = 0;
    qsizetype usualSize = 0;
    compare(
        state,
        [&] {
            const auto texts = pngBase64Pair(pictures.whole, pictures.part);
            size = texts.first.value_or(QString()).size() + texts.second.value_or(QString()).size();
        },
        [&] { usualSize = usualPngBase64(pictures.whole).size() + usualPngBase64(pictures.part).size(); });
    state.counters["size_ratio"] = double(size) / double(usualSize);
    state.counters["kilobytes"] = double(size) / 1000;
}

/// A card seen at an angle, upright at the size of its cut-out.
void perspectiveCorrection(benchmark::State& state)
{
    const QImage picture = tap(Subject::Front, 2).whole;
    const QPointF corners[] = { { 118, 640 }, { 950, 660 }, { 130, 110 }, { 940, 95 } }; // origin bottom-left
    const CIImage output
        = CIImage(picture)
              .applyingFilter(QStringLiteral("CIPerspectiveCorrection"),
                  { { QStringLiteral("inputTopLeft"), corners[0] }, { QStringLiteral("inputTopRight"), corners[1] },
                      { QStringLiteral("inputBottomLeft"), corners[2] },
                      { QStringLiteral("inputBottomRight"), corners[3] } })
              .value();
    const cv::Size size(int(output.extent().width()), int(output.extent().height()));
    const auto width = float(size.width);
    const auto height = float(size.height);
    const cv::Point2f upright[] = { { 0, 0 }, { width, 0 }, { 0, height }, { width, height } };
    cv::Point2f quad[4];
    std::transform(std::begin(corners), std::end(corners), quad,
        [&](const QPointF& corner) { return cv::Point2f(float(corner.x()), float(picture.height() - corner.y())); });
    const cv::Mat bgra(picture.height(), picture.width(), CV_8UC4, const_cast<uchar*>(picture.constBits()),
        std::size_t(picture.bytesPerLine()));
    compare(
        state, [&] { benchmark::DoNotOptimize(CIContext::shared().createCGImage(output, output.extent())); },
        [&] {
            cv::Mat warped;
            cv::warpPerspective(bgra, warped, cv::getPerspectiveTransform(quad, upright), size, cv::INTER_LINEAR);
            benchmark::DoNotOptimize(warped.data);
        });
    state.SetLabel("baseline mixes bytes, not light");
}

void crop(benchmark::State& state)
{
    const QImage frame = QImage(1920, 1080, QImage::Format_RGB32).copy();
    const QRectF part(420, 160, 1080, 760);
    compare(
        state, [&] { benchmark::DoNotOptimize(cropping(frame, part)); },
        [&] { benchmark::DoNotOptimize(frame.copy(part.toAlignedRect())); }, 16);
}

/// The same mean by one loop over all pixels with a table of 256 linear values.
double scannedLuminance(const QImage& image)
{
    static const std::array<double, 256> linear = [] {
        std::array<double, 256> table {};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const double value = double(i) / 255;
            table[i] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        }
        return table;
    }();
    std::array<double, 3> sum {};
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum[0] += linear[std::size_t(qRed(line[x]))];
            sum[1] += linear[std::size_t(qGreen(line[x]))];
            sum[2] += linear[std::size_t(qBlue(line[x]))];
        }
    }
    const auto byte = [&](double total) {
        const double mean = total / image.width() / image.height();
        return std::round(255 * (mean <= 0.0031308 ? mean * 12.92 : 1.055 * std::pow(mean, 1 / 2.4) - 0.055));
    };
    return (byte(sum[0]) * 0.213 + byte(sum[1]) * 0.715 + byte(sum[2]) * 0.072) / 255;
}

void luminance(benchmark::State& state)
{
    const QImage picture = tap(Subject::Back, 2).whole;
    const CIImage image(picture);
    if (std::abs(averageLuminance(image) - scannedLuminance(picture)) > 1.0 / 255) {
        state.SkipWithError("the two ways do not agree");
        return;
    }
    compare(
        state, [&] { benchmark::DoNotOptimize(averageLuminance(image)); },
        [&] { benchmark::DoNotOptimize(scannedLuminance(picture)); });
}

void registerAll()
{
    // The number of rounds is fixed, as the library would choose it by our time alone.
    const auto add = [](const std::string& name, int rounds, auto run) {
        benchmark::RegisterBenchmark(name.c_str(), run)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(rounds);
    };
    const std::pair<const char*, Subject> subjects[]
        = { { "front", Subject::Front }, { "back", Subject::Back }, { "selfie", Subject::Selfie } };
    for (const auto& [name, subject] : subjects) {
        for (const int noise : { 0, 1, 2, 4, 8 })
            add(std::string("tap/") + name + "/noise:" + std::to_string(noise), 5,
                [subject = subject, noise](benchmark::State& state) { tapTexts(state, subject, noise); });
    }
    add("perspective/baseline:warpPerspective", 50, perspectiveCorrection);
    add("crop/baseline:copy", 50, crop);
    add("luminance/baseline:scan", 50, luminance);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    cv::setNumThreads(1);
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
