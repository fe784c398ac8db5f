// How well MRZ bands are read: preprocessing, engine and parser, on bands of every size and condition.
//   whole    vouched for, and every field right
//   name     vouched for, but a field is wrong that no check digit protects: names, sex, codes
//   misread  vouched for, but a protected field is wrong. Exits with 1 if there is any.

#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/OcrbModel.h"
#include "Platform/Mrz/MrzAgreement.h"
#include "Platform/Mrz/MrzLines.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Specimen/Scene.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <optional>

using namespace kelvara;
using namespace kelvara::ocrb;

namespace {

struct Tally
{
    int bands = 0;
    int exact = 0; ///< Text of every line.
    int exactButO = 0; ///< Counting O and 0 as one.
    int parsed = 0; ///< Accepted and every field right.
    int misread = 0; ///< Accepted, and a field wrong that check digits protect.
    int name = 0; ///< Accepted, and only another field wrong.
    long characters = 0;
    long right = 0;
    bool tellsFailures = false;
    std::vector<double> milliseconds {};
    std::map<QString, int> confusions {};
};

bool sameFields(const QKMRZResult& a, const QKMRZResult& b)
{
    return a.documentType == b.documentType && a.countryCode == b.countryCode && a.surnames == b.surnames
        && a.givenNames == b.givenNames && a.nationality == b.nationality && a.sex == b.sex
        && sameProtectedFields(a, b);
}

void compare(const QStringList& truth, const TesseractText& text, Tally& tally)
{
    QStringList read;
    for (const MrzLineReading& line : text.lines)
        read << line.text;
    tally.exact += read == truth ? 1 : 0;
    QStringList readO = read;
    QStringList truthO = truth;
    tally.exactButO += readO.replaceInStrings(QStringLiteral("O"), QStringLiteral("0"))
            == truthO.replaceInStrings(QStringLiteral("O"), QStringLiteral("0"))
        ? 1
        : 0;
    for (qsizetype l = 0; l < truth.size(); ++l) {
        tally.characters += truth[l].size();
        if (l >= read.size() || read[l].size() != truth[l].size()) {
            ++tally.confusions[QStringLiteral("line of %1 characters")
                                   .arg(l < read.size() ? read[l].size() - truth[l].size() : -99)];
            continue;
        }
        for (qsizetype c = 0; c < truth[l].size(); ++c) {
            tally.right += read[l][c] == truth[l][c] ? 1 : 0;
            if (read[l][c] != truth[l][c])
                ++tally.confusions[QStringLiteral("%1>%2").arg(truth[l][c]).arg(read[l][c])];
        }
    }
}

void measure(
    TesseractEngine& engine, const QKMRZParser& parser, const QStringList& truth, const QImage& band, Tally& tally)
{
    ++tally.bands;
    QElapsedTimer timer;
    timer.start();
    const auto prepared = preprocessImage(band);
    const TesseractResult result = prepared ? engine.performOCR(*prepared)
                                            : TesseractResult(TesseractError { TesseractError::Kind::NoImage, {} });
    const auto* text = std::get_if<TesseractText>(&result);
    const auto lines = text ? mrzLines(text->lines) : std::nullopt;
    const auto parsed = lines ? parser.parse(*lines) : std::nullopt;
    tally.milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
    const auto expected = QKMRZParser(false).parse(truth);
    if (parsed && parsed->allCheckDigitsValid && expected)
        ++(!sameProtectedFields(*parsed, *expected) ? tally.misread
                : sameFields(*parsed, *expected)    ? tally.parsed
                                                    : tally.name);
    const bool right = parsed && parsed->allCheckDigitsValid && expected && sameFields(*parsed, *expected);
    if (tally.tellsFailures && !right) {
        std::printf("  %s: %s\n", parsed && parsed->allCheckDigitsValid ? "WRONG" : "refused",
            qPrintable(truth.join(QLatin1Char(' '))));
        for (const MrzLineReading& line : text ? text->lines : std::vector<MrzLineReading>()) {
            std::printf("    %s", qPrintable(line.text));
            for (std::size_t i = 0; i < line.certainties.size(); ++i) {
                if (line.certainties[i] < 0.97F)
                    std::printf("  %zu:%c/%s %.2f", i, line.text[qsizetype(i)].toLatin1(),
                        qPrintable(line.alternatives[i]), double(line.certainties[i]));
            }
            std::printf("\n");
        }
    }
    compare(truth, text ? *text : TesseractText(), tally);
}

/// The band that a text detector would cut out of a photographed card: the box around the three lines, a millimetre
/// wider. Absent when it does not lie within the picture.
std::optional<QImage> photographedBand(const specimen::SpecimenData& data, std::uint32_t seed, int pictureWidth)
{
    constexpr double cardWidth = 85.6;
    constexpr double cardHeight = 53.98;
    constexpr QRectF lines(3.7, 35.9, 78.2, 14.1); // on the card, in millimetres
    const QSize size(pictureWidth, pictureWidth * 7 / 10);
    auto options = specimen::ordinary(seed, specimen::Subject::Back, size);
    options.fill = 0.9;
    options.rollDegrees = qBound(-3.0, options.rollDegrees, 3.0);
    const specimen::Scene scene = specimen::photograph(data, options);
    if (!scene.corners)
        return std::nullopt;
    const QPolygonF card { QPolygonF(
        { QPointF(0, 0), QPointF(cardWidth, 0), QPointF(cardWidth, cardHeight), QPointF(0, cardHeight) }) };
    QTransform toPicture;
    if (!QTransform::quadToQuad(card, *scene.corners, toPicture))
        return std::nullopt;
    const QRect band = toPicture.map(QPolygonF(lines)).boundingRect().toAlignedRect();
    return scene.image.rect().contains(band) ? std::optional(scene.image.copy(band)) : std::nullopt;
}

double percent(double part, double whole)
{
    return whole > 0 ? 100 * part / whole : 0;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption(
        { QStringLiteral("seed"), QStringLiteral("First seed."), QStringLiteral("number"), QStringLiteral("5000000") });
    options.addOption({ QStringLiteral("count"),
        QStringLiteral("Degraded bands of each size and condition; a fifth as many clean ones and scenes."),
        QStringLiteral("number"), QStringLiteral("625") });
    options.addOption(
        { QStringLiteral("model"), QStringLiteral("Folder of another ocrb.traineddata."), QStringLiteral("folder") });
    options.addOption({ QStringLiteral("confusions"), QStringLiteral("Tell what was taken for what.") });
    options.addOption({ QStringLiteral("failures"), QStringLiteral("Show bands that were not read.") });
    options.addOption({ QStringLiteral("condition"), QStringLiteral("Only conditions that begin so."),
        QStringLiteral("name"), QString() });
    options.process(application);
    FilterVendor::registerFilters();
    TesseractEngine engine(QStringLiteral("ocrb"),
        options.isSet(QStringLiteral("model")) ? options.value(QStringLiteral("model")) : ocrbModelFolder(),
        TesseractEngineMode::TesseractOnly);
    const QKMRZParser parser(true);
    const int count = options.value(QStringLiteral("count")).toInt();
    const int few = std::max(1, count / 5);
    std::uint32_t seed = options.value(QStringLiteral("seed")).toUInt();
    int bandsInAll = 0;
    int misreadInAll = 0;
    struct Condition
    {
        const char* name;
        BandCondition condition;
    };
    constexpr std::array conditions { Condition { "clean", BandCondition::Clean },
        Condition { "noise", BandCondition::Noise }, Condition { "slight blur", BandCondition::SlightBlur },
        Condition { "mixed", BandCondition::Mixed }, Condition { "strong blur", BandCondition::StrongBlur } };
    std::printf("%-12s %-4s %3s %6s %6s %7s %7s %7s %5s %8s %8s %8s\n", "condition", "kind", "cap", "bands", "char%",
        "exact%", "O=0%", "whole%", "name", "misread", "median", "p95 ms");
    for (const Condition& condition : conditions) {
        if (!QString::fromLatin1(condition.name).startsWith(options.value(QStringLiteral("condition"))))
            continue;
        for (const auto format : { BandFormat::TD1, BandFormat::TD3 }) {
            Tally all;
            for (const int capital : { 16, 20, 24, 32 }) {
                Tally tally;
                tally.tellsFailures = options.isSet(QStringLiteral("failures"));
                const bool isClean = condition.condition == BandCondition::Clean;
                for (int i = 0; i < (isClean ? few : count); ++i, ++seed) {
                    const QStringList truth = bandText(format, seed);
                    const auto band = paintBand(truth, bandOptions(condition.condition, capital, seed));
                    if (!band) {
                        std::fprintf(stderr, "The OCR-B font is missing: install fonts-ocr-b.\n");
                        return 1;
                    }
                    measure(engine, parser, truth, *band, tally);
                }
                std::sort(tally.milliseconds.begin(), tally.milliseconds.end());
                const auto at = [&](double share) {
                    return tally.milliseconds[std::size_t(share * double(tally.milliseconds.size() - 1))];
                };
                std::printf("%-12s %-4s %3d %6d %6.2f %7.1f %7.1f %7.1f %5d %8d %8.1f %8.1f\n", condition.name,
                    format == BandFormat::TD1 ? "TD1" : "TD3", capital, tally.bands,
                    percent(double(tally.right), double(tally.characters)), percent(tally.exact, tally.bands),
                    percent(tally.exactButO, tally.bands), percent(tally.parsed, tally.bands), tally.name,
                    tally.misread, at(0.5), at(0.95));
                all.bands += tally.bands;
                all.parsed += tally.parsed;
                all.name += tally.name;
                all.misread += tally.misread;
                for (const auto& [name, times] : tally.confusions)
                    all.confusions[name] += times;
            }
            std::printf("%-12s %-4s all %6d %30.1f %5d %8d\n", condition.name,
                format == BandFormat::TD1 ? "TD1" : "TD3", all.bands, percent(all.parsed, all.bands), all.name,
                all.misread);
            bandsInAll += all.bands;
            misreadInAll += all.misread;
            if (options.isSet(QStringLiteral("confusions"))) {
                std::vector<std::pair<int, QString>> ranked;
                for (const auto& [name, times] : all.confusions)
                    ranked.emplace_back(times, name);
                std::sort(ranked.rbegin(), ranked.rend());
                for (std::size_t i = 0; i < std::min<std::size_t>(ranked.size(), 14); ++i)
                    std::printf("  %s: %d", qPrintable(ranked[i].second), ranked[i].first);
                std::printf("\n");
            }
            std::fflush(stdout);
        }
    }
    if (options.value(QStringLiteral("condition")).isEmpty()
        || options.value(QStringLiteral("condition")) == QStringLiteral("scene")) {
        // A capital of 2.4 mm on a card that fills nine tenths of the picture.
        for (const int width : { 640, 800, 1000, 1300 }) {
            Tally tally;
            tally.tellsFailures = options.isSet(QStringLiteral("failures"));
            for (int i = 0; i < few; ++i, ++seed) {
                const auto data = specimen::SpecimenData::fromSeed(seed);
                if (const auto band = photographedBand(data, seed, width))
                    measure(engine, parser, data.mrzLines(), *band, tally);
            }
            misreadInAll += tally.misread;
            bandsInAll += tally.bands;
            std::printf("%-12s TD1  %3.0f %6d %6.2f %7.1f %7.1f %7.1f %5d %8d\n", "scene", width * 0.9 / 85.6 * 2.4,
                tally.bands, percent(double(tally.right), double(tally.characters)), percent(tally.exact, tally.bands),
                percent(tally.exactButO, tally.bands), percent(tally.parsed, tally.bands), tally.name, tally.misread);
            std::fflush(stdout);
        }
    }
    std::printf("%d bands, %d misread\n", bandsInAll, misreadInAll);
    return misreadInAll > 0 ? 1 : 0;
}
