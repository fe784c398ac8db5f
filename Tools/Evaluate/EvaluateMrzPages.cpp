// How well the machine-readable zones of whole pictures are read: a folder of pictures and what they say.

#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPageReader.h"
#include "Kelvara/OcrbModel.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>

using namespace kelvara;

namespace {

struct Tally
{
    int pictures = 0;
    int whole = 0; ///< Every line exactly right.
    int vouched = 0;
    int misread = 0; ///< Vouched for, and a line wrong.
    int attempts = 0;
    std::vector<double> milliseconds;
};

QStringList truthOf(const QJsonObject& entry)
{
    QStringList lines;
    const QJsonArray written = entry[QLatin1String("mrz")].toArray();
    for (const QJsonValue& line : written)
        lines << line.toString();
    return lines;
}

void tell(const QString& file, const QStringList& truth, const MrzPageReading& reading)
{
    std::printf("%s: %s, %d attempts\n", qPrintable(file),
        !reading.band                             ? "no band"
            : !reading.result                     ? "no zone"
            : reading.result->allCheckDigitsValid ? "vouched for"
                                                  : "not vouched for",
        reading.attempts);
    const QStringList& lines = reading.lines;
    for (qsizetype l = 0; l < std::max(truth.size(), lines.size()); ++l) {
        const QString expected = truth.value(l);
        const QString taken = lines.value(l);
        std::printf("    %s\n", qPrintable(expected));
        if (expected == taken)
            continue;
        QString different;
        for (qsizetype c = 0; c < taken.size(); ++c)
            different += c < expected.size() && expected[c] == taken[c] ? QChar(u'.') : taken[c];
        std::printf("  ≠ %s\n", qPrintable(different));
    }
    if (!reading.result) {
        for (const MrzLineReading& line : reading.text)
            std::printf("  ? %s\n", qPrintable(line.text));
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "Reads the machine-readable zones of a folder's pictures and compares them with its ground_truth.json, which "
        "is a list of {\"file\": name, \"mrz\": [line, …]}."));
    options.addHelpOption();
    options.addOption({ QStringLiteral("failures"), QStringLiteral("Show what was not read whole.") });
    options.addPositionalArgument(QStringLiteral("FOLDER"), QStringLiteral("Pictures and ground_truth.json."));
    options.process(application);
    if (options.positionalArguments().size() != 1)
        options.showHelp(options.positionalArguments().isEmpty() ? 0 : 2);
    const QDir folder(options.positionalArguments().constFirst());
    QFile file(folder.filePath(QStringLiteral("ground_truth.json")));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read.\n", qPrintable(file.fileName()));
        return 2;
    }
    FilterVendor::registerFilters();
    TesseractEngine engine(QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly);
    const QKMRZParser parser(true);
    MrzPageReader reader(engine, parser);
    Tally tally;
    const QJsonArray entries = QJsonDocument::fromJson(file.readAll()).array();
    for (const QJsonValue& value : entries) {
        const QJsonObject entry = value.toObject();
        const QString name = entry[QLatin1String("file")].toString();
        QElapsedTimer timer;
        timer.start();
        QImageReader pictures(folder.filePath(name));
        pictures.setAutoTransform(true);
        const QImage picture = pictures.read();
        if (picture.isNull()) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(name), qPrintable(pictures.errorString()));
            continue;
        }
        const MrzPageReading reading = reader.read(picture);
        tally.milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
        const QStringList truth = truthOf(entry);
        const bool isWhole = !truth.isEmpty() && reading.lines == truth;
        const bool isVouched = reading.result && reading.result->allCheckDigitsValid;
        ++tally.pictures;
        tally.attempts += reading.attempts;
        tally.whole += isWhole ? 1 : 0;
        tally.vouched += isVouched ? 1 : 0;
        tally.misread += isVouched && !isWhole ? 1 : 0;
        if (options.isSet(QStringLiteral("failures")) && !isWhole)
            tell(name, truth, reading);
    }
    if (tally.pictures == 0) {
        std::fprintf(stderr, "No picture could be read.\n");
        return 2;
    }
    std::sort(tally.milliseconds.begin(), tally.milliseconds.end());
    const auto at
        = [&](double share) { return tally.milliseconds[std::size_t(share * double(tally.milliseconds.size() - 1))]; };
    std::printf(
        "%d pictures: %d read whole, %d vouched for, %d of these misread; %.2f attempts, median %.0f ms, p95 %.0f "
        "ms\n",
        tally.pictures, tally.whole, tally.vouched, tally.misread, double(tally.attempts) / tally.pictures, at(0.5),
        at(0.95));
    return 0;
}
