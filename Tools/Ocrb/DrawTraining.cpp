// Draws what the "ocrb" model is trained on: bands that went the product's own way (preprocessing, layout), as the very
// sheets of glyphs that Tesseract is given when it reads, each with a box file that says what stands where.

#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Platform/Mrz/OcrBitmap.h"
#include "Platform/Mrz/OcrSheet.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Specimen/Dice.h"

#include <QFile>
#include <QGuiApplication>
#include <QTextStream>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <array>
#include <cstdio>

using namespace kelvara;
using namespace kelvara::ocrb;

namespace {

// Below a million: what is trained and tuned on. Gates and evaluations use seeds from five million.
constexpr std::uint32_t kFirstSeed = 100'000;

bool draw(const QString& base, const QStringList& lines, const BandOptions& options)
{
    const auto band = paintBand(lines, options);
    const auto prepared = band ? preprocessImage(*band) : std::nullopt;
    if (!prepared)
        return false;
    const ocr::Layout layout = ocr::findLayout(ocr::inkOf(*prepared));
    if (layout.lines.size() != std::size_t(lines.size()))
        return false;
    for (std::size_t l = 0; l < layout.lines.size(); ++l) {
        if (layout.lines[l].cells.size() != std::size_t(lines[qsizetype(l)].size()))
            return false;
    }
    const ocr::Sheet sheet = ocr::layOut(layout);
    QFile boxes(base + QStringLiteral(".box"));
    if (!boxes.open(QIODevice::WriteOnly))
        return false;
    QTextStream out(&boxes);
    for (std::size_t l = 0; l < layout.lines.size(); ++l) {
        for (std::size_t c = 0; c < layout.lines[l].cells.size(); ++c) {
            const cv::Rect place = ocr::Sheet::place(l, c);
            const cv::Rect ink = cv::boundingRect(255 - sheet.image(place));
            if (ink.empty())
                return false;
            const int left = place.x + ink.x;
            const int top = place.y + ink.y;
            out << lines[qsizetype(l)][qsizetype(c)] << ' ' << left << ' ' << sheet.image.rows - top - ink.height << ' '
                << left + ink.width << ' ' << sheet.image.rows - top << " 0\n";
        }
    }
    return cv::imwrite((base + QStringLiteral(".png")).toStdString(), sheet.image);
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: kelvara-draw-ocrb FOLDER SHEETS-PER-CONDITION\n");
        return 2;
    }
    FilterVendor::registerFilters();
    struct Kind
    {
        const char* label;
        BandCondition condition;
    };
    constexpr std::array kinds { Kind { "clean", BandCondition::Clean }, Kind { "noise", BandCondition::Noise },
        Kind { "blur", BandCondition::SlightBlur }, Kind { "strong", BandCondition::StrongBlur },
        Kind { "mixed", BandCondition::Mixed } };
    const int wanted = QString::fromLocal8Bit(argv[2]).toInt();
    std::uint32_t seed = kFirstSeed;
    for (const Kind& kind : kinds) {
        int drawn = 0;
        for (int tries = 0; drawn < wanted && tries < 10 * wanted; ++tries, ++seed) {
            specimen::Dice dice(seed, 0x7472); // "tr"
            const BandOptions options = bandOptions(kind.condition, dice.real(15, 33), seed);
            const QString base = QStringLiteral("%1/ocrb.%2.exp%3")
                                     .arg(QString::fromLocal8Bit(argv[1]), QLatin1String(kind.label))
                                     .arg(drawn);
            drawn += draw(base, evenText(seed), options) ? 1 : 0;
        }
        std::printf("%s: %d sheets\n", kind.label, drawn);
        if (drawn == 0)
            return 1;
    }
    return 0;
}
