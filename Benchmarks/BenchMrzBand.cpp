#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/OcrbModel.h"
#include "Platform/Mrz/MrzLines.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"

#include <QFile>
#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <tesseract/baseapi.h>

#include <memory>

// From a band of an MRZ to its fields: preprocessing, OCR and parsing, against Tesseract alone with the same model,
// which finds the lines of the same prepared band by itself (page segmentation mode 6). "read" is the share of bands
// vouched for.

namespace {

using namespace kelvara;
using ocrb::BandCondition;
using ocrb::BandFormat;

/// A score of bands of one size: half cards, half passports, all conditions.
const std::vector<QImage>& bands(int capital)
{
    static std::map<int, std::vector<QImage>> made;
    auto& images = made[capital];
    static constexpr std::array conditions { BandCondition::Clean, BandCondition::Noise, BandCondition::SlightBlur,
        BandCondition::Mixed, BandCondition::StrongBlur };
    for (std::uint32_t i = 0; images.size() < 20; ++i) {
        const std::uint32_t seed = 5'900'000 + i;
        const auto format = i % 2 ? BandFormat::TD3 : BandFormat::TD1;
        const auto band = ocrb::paintBand(
            ocrb::bandText(format, seed), ocrb::bandOptions(conditions[i / 2 % conditions.size()], capital, seed));
        images.push_back(band.value_or(QImage()));
    }
    return images;
}

/// One iteration reads one band; they take turns.
template<typename Read> void run(benchmark::State& state, Read read)
{
    cv::setNumThreads(1);
    FilterVendor::registerFilters();
    const auto& images = bands(int(state.range(0)));
    if (images.front().isNull())
        return state.SkipWithError("The OCR-B font is missing.");
    (void)read(images.front()); // what is loaded once is loaded now
    std::size_t at = 0;
    int vouchedFor = 0;
    for (auto _ : state) {
        const std::optional<QKMRZResult> result = read(images[at++ % images.size()]);
        vouchedFor += result && result->allCheckDigitsValid ? 1 : 0;
    }
    state.counters["read"] = double(vouchedFor) / double(state.iterations());
}

void BM_MrzBand(benchmark::State& state)
{
    TesseractEngine engine(QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly);
    const QKMRZParser parser(true);
    run(state, [&](const QImage& band) -> std::optional<QKMRZResult> {
        const auto result = engine.performOCR(preprocessImage(band).value_or(QImage()));
        const auto* text = std::get_if<TesseractText>(&result);
        const auto lines = text ? mrzLines(text->lines) : std::nullopt;
        return lines ? parser.parse(*lines) : std::nullopt;
    });
}
BENCHMARK(BM_MrzBand)->Arg(20)->Arg(24)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_MrzBandPlainTesseract(benchmark::State& state)
{
    QFile file(ocrbModelFolder() + QStringLiteral("/ocrb.traineddata"));
    if (!file.open(QIODevice::ReadOnly))
        return state.SkipWithError("The model is missing.");
    const QByteArray model = file.readAll();
    tesseract::TessBaseAPI api;
    if (api.Init(model.constData(), int(model.size()), "ocrb", tesseract::OEM_TESSERACT_ONLY, nullptr, 0, nullptr,
            nullptr, false, nullptr)
        != 0)
        return state.SkipWithError("Tesseract refuses the model.");
    api.SetVariable("debug_file", "/dev/null");
    api.SetPageSegMode(tesseract::PSM_SINGLE_BLOCK);
    const QKMRZParser parser(true);
    run(state, [&](const QImage& band) -> std::optional<QKMRZResult> {
        const QImage grey = preprocessImage(band).value_or(QImage()).convertToFormat(QImage::Format_Grayscale8);
        api.SetImage(grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
        api.SetSourceResolution(300);
        const std::unique_ptr<char[]> text(api.GetUTF8Text());
        const auto lines = mrzLines(QString::fromUtf8(text.get()));
        return lines ? parser.parse(*lines) : std::nullopt;
    });
    api.End();
}
BENCHMARK(BM_MrzBandPlainTesseract)->Arg(20)->Arg(24)->Unit(benchmark::kMillisecond)->MinTime(2);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv); // fonts need one
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
