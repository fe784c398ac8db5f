// Looks for the machine-readable zone in photographed specimen cards that are held near, reads it from that one
// picture the way the card step does, and counts how often a picture without a zone would be read in vain.
//
//   kelvara-evaluate-text [first seed = 5000000] [pictures a class = 100] [width = 1000] [height = 700]

#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/OcrbModel.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Mrz/MrzLines.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Platform/Vision/TextLineDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Evaluate/RectangleScenes.h"
#include "Tools/Evaluate/TextScenes.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <opencv2/core/utility.hpp>
#include <vector>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

/// This thread's processor time: what else the machine does is left out.
double processorMilliseconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

class Times
{
public:
    template<typename Work> auto of(const Work& work)
    {
        const double begin = processorMilliseconds();
        auto result = work();
        m_all.push_back(processorMilliseconds() - begin);
        return result;
    }
    void print(const char* what)
    {
        if (m_all.empty())
            return;
        std::sort(m_all.begin(), m_all.end());
        std::printf(
            "%s median %.1f ms, 99 %% %.1f ms\n", what, m_all[m_all.size() / 2], m_all[(m_all.size() - 1) * 99 / 100]);
    }

private:
    std::vector<double> m_all;
};

class Reader
{
public:
    std::optional<QKMRZResult> read(const QImage& image, const QRectF& band)
    {
        const auto cut = cropping(image, band);
        const auto prepared = cut ? preprocessImage(*cut) : std::nullopt;
        if (!prepared)
            return std::nullopt;
        const TesseractResult recognised = m_engine.performOCR(UIImage(*prepared));
        const auto* text = std::get_if<TesseractText>(&recognised);
        const auto lines = text ? mrzLines(text->lines) : std::nullopt;
        return lines ? m_parser.parse(*lines) : std::nullopt;
    }

private:
    TesseractEngine m_engine { QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly };
    QKMRZParser m_parser { true };
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    cv::setNumThreads(1);
    FilterVendor::registerFilters();
    const auto first = static_cast<std::uint32_t>(argc > 1 ? std::atol(argv[1]) : gateSeeds);
    const auto count = static_cast<std::uint32_t>(argc > 2 ? std::max(1, std::atoi(argv[2])) : 100);
    const QSize size(argc > 3 ? std::atoi(argv[3]) : 1000, argc > 4 ? std::atoi(argv[4]) : 700);
    std::printf("Text: %u pictures a class, %d x %d, seeds from %u\n", count, size.width(), size.height(), first);

    const TextLineDetector detector;
    Reader reader;
    Times searching;
    Times reading;
    int found = 0;
    int accepted = 0;
    int wrong = 0;
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        const auto data = specimen::SpecimenData::fromSeed(seed);
        const specimen::Scene scene = photograph(data, nearBack(seed, size));
        const auto lines = searching.of([&] { return detector.detect(VisionImage(scene.image)); });
        const QRectF band = wideBand(lines, size);
        const QRectF zone = zoneIn(scene);
        const QRectF common = band & zone;
        found += common.width() * common.height() > 0.97 * zone.width() * zone.height();
        if (band.isNull())
            continue;
        const auto result = reading.of([&] { return reader.read(scene.image, band); });
        if (!result || !result->allCheckDigitsValid)
            continue;
        ++accepted;
        wrong += result->documentNumber != data.documentNumber || result->birthDate != data.birthDate
            || result->expiryDate != data.expiryDate || result->personalNumber != data.identityNumber;
    }
    std::printf("card held near: zone found %d, read and accepted %d, accepted with a wrong number or date %d\n", found,
        accepted, wrong);
    searching.print("  search (downscaled planes included)");
    reading.print("  band to parsed result");

    for (const RectangleSceneClass& kind : rectangleScenes) {
        if (!kind.isEmpty && kind.scene != RectangleScene::Plain)
            continue;
        Times times;
        int vain = 0;
        for (std::uint32_t seed = first; seed < first + count; ++seed) {
            specimen::SceneOptions options
                = kind.isEmpty ? rectangleSceneOptions(kind.scene, seed, size) : nearBack(seed, size);
            if (!kind.isEmpty)
                options.subject = specimen::Subject::Front;
            const specimen::Scene scene = photograph(specimen::SpecimenData::fromSeed(seed), options);
            const auto lines = times.of([&] { return detector.detect(VisionImage(scene.image)); });
            vain += !wideBand(lines, size).isNull();
        }
        std::printf("%s: read in vain %d;", kind.isEmpty ? kind.name : "a card's front", vain);
        times.print("");
    }
    return 0;
}
