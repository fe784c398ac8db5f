#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Platform/Imaging/Srgb.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <random>

// Preparing a band for reading: the one lazy pass against the same chain, step by step, with OpenCV. Memory is what the
// C library says is in use, at its highest, above what was in use before.

extern "C" void* __libc_malloc(std::size_t size); // NOLINT
extern "C" void __libc_free(void* memory); // NOLINT
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT

namespace {
std::atomic<std::size_t> inUse { 0 };
std::atomic<std::size_t> peak { 0 };

void* counted(void* memory)
{
    if (memory) {
        const std::size_t now = inUse += malloc_usable_size(memory);
        if (now > peak)
            peak = now;
    }
    return memory;
}
} // namespace

// Qt, OpenCV and operator new all come to these.
extern "C" void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}
extern "C" void* memalign(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size));
}
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}
extern "C" int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    *memory = memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}
extern "C" void free(void* memory)
{
    if (memory)
        inUse -= malloc_usable_size(memory);
    __libc_free(memory);
}

namespace {

using namespace kelvara;

/// Dark strokes on light paper with noise, 21 pixels high capitals about: 900 × 150.
QImage band(int width)
{
    QImage image(width, width / 6, QImage::Format_RGB32);
    std::mt19937 random(7);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < width; ++x) {
            const bool ink = x % 30 < 5 && y % 50 > 14 && y % 50 < 36;
            const int level = (ink ? 50 : 200) + int(random() % 21) - 10;
            image.setPixel(x, y, qRgb(level, level, level - 5));
        }
    }
    return image;
}

/// The chain done eagerly, in linear light too.
QImage eager(const QImage& image)
{
    const cv::Mat bgra(image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
        std::size_t(image.bytesPerLine()));
    cv::Mat bgr;
    cv::cvtColor(bgra, bgr, cv::COLOR_BGRA2BGR);
    static const cv::Mat table(1, 256, CV_32F, const_cast<float*>(imaging::kLinearOfByte.data()));
    cv::Mat linear;
    cv::LUT(bgr, table, linear);
    const cv::Scalar mean = cv::mean(linear);
    const auto encoded = [](double light) { return std::lround(255 * imaging::srgbEncoded(float(light))) / 255.0; };
    const auto exposure
        = MrzExposure::of(encoded(mean[2]) * 0.213 + encoded(mean[1]) * 0.715 + encoded(mean[0]) * 0.072);
    linear *= std::exp2(exposure.stops);
    cv::Mat doubled;
    cv::resize(linear, doubled, cv::Size(), 2, 2, cv::INTER_LANCZOS4);
    cv::Mat luma;
    cv::transform(doubled, luma, cv::Matx13f(0.0722F, 0.7152F, 0.2126F));
    const cv::Mat mask = luma > exposure.threshold;
    QImage result(mask.cols, mask.rows, QImage::Format_ARGB32_Premultiplied);
    cv::Mat out(mask.rows, mask.cols, CV_8UC4, result.bits(), std::size_t(result.bytesPerLine()));
    cv::cvtColor(mask, out, cv::COLOR_GRAY2BGRA);
    return result;
}

template<typename Prepare> void run(benchmark::State& state, Prepare prepare)
{
    cv::setNumThreads(1);
    FilterVendor::registerFilters();
    const QImage source = band(int(state.range(0)));
    benchmark::DoNotOptimize(prepare(source)); // what is made once is made now
    const std::size_t before = inUse;
    peak = before;
    for (auto _ : state)
        benchmark::DoNotOptimize(prepare(source));
    state.counters["peak_bytes"] = double(peak - before);
    state.counters["result_bytes"] = double(source.width()) * source.height() * 16;
}

void BM_PreprocessLazy(benchmark::State& state)
{
    run(state, [](const QImage& image) { return *preprocessImage(image); });
}
BENCHMARK(BM_PreprocessLazy)->Arg(600)->Arg(900)->Arg(1800)->Unit(benchmark::kMillisecond);

void BM_PreprocessEagerOpenCV(benchmark::State& state)
{
    run(state, eager);
}
BENCHMARK(BM_PreprocessEagerOpenCV)->Arg(600)->Arg(900)->Arg(1800)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
