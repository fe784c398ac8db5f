// What is done to pictures between the camera and the record, each beside the plain way to do the same. Both ways run
// by turns, so that whatever else the machine does befalls both alike; a benchmark's time is ours, and its counters
// give the medians of both in milliseconds, how many times sooner ours is done, and how many times less it computes
// (`cpu_ratio`: other programs on the machine hardly change it).

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
#include <ctime>
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
    struct Times
    {
        std::vector<double> wall; ///< seconds
        std::vector<double> cpu; ///< of all threads
    };
    const auto run = [repeats](const std::function<void()>& work, Times& times) {
        const auto begin = std::chrono::steady_clock::now();
        const std::clock_t cpuBegin = std::clock();
        for (int i = 0; i < repeats; ++i)
            work();
        times.cpu.push_back(double(std::clock() - cpuBegin) / CLOCKS_PER_SEC / repeats);
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
        times.wall.push_back(wall.count() / repeats);
    };
    Times our;
    Times their;
    for (auto _ : state) {
        run(baseline, their);
        run(ours, our);
        state.SetIterationTime(our.wall.back());
    }
    constexpr double milli = 1000;
    state.counters["ours_ms"] = median(our.wall) * milli;
    state.counters["baseline_ms"] = median(their.wall) * milli;
    state.counters["times_sooner"] = median(their.wall) / median(our.wall);
    state.counters["cpu_ratio"] = median(their.cpu) / median(our.cpu);
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

/// sRGB's curve from a byte to light, 0 to 1.
const cv::Mat1f& linearOfByte()
{
    static const cv::Mat1f table = [] {
        cv::Mat1f made(1, 256);
        for (int i = 0; i < made.cols; ++i) {
            const double value = i / 255.0;
            made(0, i) = float(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
        }
        return made;
    }();
    return table;
}

/// And back to sRGB, 0 to 1.
double encoded(double light)
{
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// The warp with bytes turned to light before and back after it, both by tables.
cv::Mat4b warpedInLinearLight(const cv::Mat& bgra, const cv::Mat& map, const cv::Size& size)
{
    constexpr int most = 4095;
    static const std::vector<uchar> byteOfLight = [] {
        std::vector<uchar> made(most + 1);
        for (int i = 0; i <= most; ++i)
            made[std::size_t(i)] = uchar(std::lround(255 * encoded(double(i) / most)));
        return made;
    }();
    cv::Mat light;
    cv::LUT(bgra, linearOfByte(), light);
    cv::Mat4f warped;
    cv::warpPerspective(light, warped, map, size, cv::INTER_LINEAR);
    cv::Mat4b result(size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const cv::Vec4f& from = warped(y, x);
            cv::Vec4b& to = result(y, x);
            for (int c = 0; c < 3; ++c)
                to[c] = byteOfLight[std::size_t(from[c] * most + 0.5F)];
            to[3] = 255;
        }
    }
    return result;
}

/// A card seen at an angle, upright at the size of its cut-out.
void perspectiveCorrection(benchmark::State& state, bool linearLight)
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
    const cv::Mat map = cv::getPerspectiveTransform(quad, upright);
    compare(
        state, [&] { benchmark::DoNotOptimize(CIContext::shared().createCGImage(output, output.extent())); },
        [&] {
            cv::Mat warped;
            if (linearLight)
                warped = warpedInLinearLight(bgra, map, size);
            else
                cv::warpPerspective(bgra, warped, map, size, cv::INTER_LINEAR);
            benchmark::DoNotOptimize(warped.data);
        });
}

void crop(benchmark::State& state)
{
    const QImage frame = QImage(1920, 1080, QImage::Format_RGB32).copy();
    const QRectF part(420, 160, 1080, 760);
    compare(
        state, [&] { benchmark::DoNotOptimize(cropping(frame, part)); },
        [&] { benchmark::DoNotOptimize(frame.copy(part.toAlignedRect())); }, 64);
}

/// The same mean by one loop over all pixels with a table of 256 linear values.
double scannedLuminance(const QImage& image)
{
    const cv::Mat1f& linear = linearOfByte();
    std::array<double, 3> sum {};
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum[0] += double(linear(0, qRed(line[x])));
            sum[1] += double(linear(0, qGreen(line[x])));
            sum[2] += double(linear(0, qBlue(line[x])));
        }
    }
    const auto byte = [&](double total) { return std::round(255 * encoded(total / image.width() / image.height())); };
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
    add("perspective/baseline:warpPerspectiveOfLight", 50, [](auto& state) { perspectiveCorrection(state, true); });
    add("perspective/baseline:warpPerspectiveOfBytes", 50, [](auto& state) { perspectiveCorrection(state, false); });
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
