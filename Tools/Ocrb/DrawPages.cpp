// Draws scans of invented documents with what their zones say, for kelvara-evaluate-mrz-pages.

#include "Tools/Ocrb/BandText.h"
#include "Tools/Ocrb/PagePainter.h"
#include "Tools/Specimen/Dice.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cstdio>

using namespace kelvara;
using namespace kelvara::ocrb;

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("Draws scans of invented documents with ground_truth.json."));
    options.addHelpOption();
    options.addOption(
        { QStringLiteral("seed"), QStringLiteral("First seed."), QStringLiteral("number"), QStringLiteral("1") });
    options.addOption(
        { QStringLiteral("count"), QStringLiteral("How many."), QStringLiteral("number"), QStringLiteral("60") });
    options.addOption({ QStringLiteral("widest"), QStringLiteral("Greatest width in pixels."), QStringLiteral("number"),
        QStringLiteral("1600") });
    options.addOption({ QStringLiteral("poor"), QStringLiteral("Badly printed and badly scanned.") });
    options.addPositionalArgument(QStringLiteral("FOLDER"), QStringLiteral("Where to."));
    options.process(application);
    if (options.positionalArguments().size() != 1)
        options.showHelp(2);
    const QDir folder(options.positionalArguments().constFirst());
    folder.mkpath(QStringLiteral("."));
    QJsonArray truth;
    const std::uint32_t first = options.value(QStringLiteral("seed")).toUInt();
    const std::uint32_t count = options.value(QStringLiteral("count")).toUInt();
    const int widest = options.value(QStringLiteral("widest")).toInt();
    const bool isPoor = options.isSet(QStringLiteral("poor"));
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        static constexpr std::array formats { BandFormat::TD1, BandFormat::TD3, BandFormat::TD2 };
        const QStringList lines = bandText(formats[seed % formats.size()], seed);
        const auto page = paintPage(lines, pageOptions(lines, seed, widest, isPoor));
        specimen::Dice dice(seed, 0x6a71); // "jq"
        const QString name = QStringLiteral("page-%1.jpg").arg(seed);
        if (!page || !page->picture.save(folder.filePath(name), "JPG", int(dice.real(40, 90)))) {
            std::fprintf(stderr, "A page could not be drawn or written: is fonts-ocr-b installed?\n");
            return 1;
        }
        truth << QJsonObject { { QStringLiteral("file"), name },
            { QStringLiteral("mrz"), QJsonArray::fromStringList(lines) } };
    }
    QFile file(folder.filePath(QStringLiteral("ground_truth.json")));
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(truth).toJson()) > 0 ? 0 : 1;
}
