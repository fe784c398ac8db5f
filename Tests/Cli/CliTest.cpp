#include "Tests/Cli/CliProcess.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Ocrb/PagePainter.h"
#include "Tools/Specimen/Scene.h"

#include <QBuffer>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTransform>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kelvara;

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QStringList linesOf(const QJsonObject& object)
{
    QStringList lines;
    for (const QJsonValue& line : object[QLatin1String("lines")].toArray())
        lines << line.toString();
    return lines;
}

QPolygonF cornersOf(const QJsonObject& object)
{
    QPolygonF corners;
    for (const QJsonValue& corner : object[QLatin1String("corners")].toArray())
        corners << QPointF(corner[QLatin1String("x")].toDouble(), corner[QLatin1String("y")].toDouble());
    return corners;
}

/// A JPEG whose Exif entry says that the stored picture is to be turned by 90° clockwise for showing.
QByteArray photoOnItsSide(const QImage& upright)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    upright.transformed(QTransform().rotate(-90)).convertToFormat(QImage::Format_RGB888).save(&buffer, "JPEG", 92);
    const QByteArray exif = QByteArray::fromHex("ffe10022"
                                                "457869660000"
                                                "4d4d002a00000008"
                                                "0001"
                                                "01120003000000010006"
                                                "0000"
                                                "00000000");
    return jpeg.left(2) + exif + jpeg.mid(2);
}

class Cli : public testing::Test
{
protected:
    QString path(const char* name) const { return folder.filePath(text(name)); }

    QString write(const char* name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return path(name);
    }

    QString write(const char* name, const QImage& image) const
    {
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }

    QTemporaryDir folder;
};

TEST_F(Cli, ReadsTheZoneOfAPhotographedCard)
{
    const auto data = specimen::SpecimenData::fromSeed(11);
    specimen::SceneOptions options;
    options.subject = specimen::Subject::Back;
    options.seed = 11;
    options.rollDegrees = 2;
    const specimen::Scene scene = specimen::photograph(data, options);
    const auto run = CliProcess::run({ text("mrz"), write("back.png", scene.image) });
    ASSERT_EQ(run.exitCode, 0) << qPrintable(run.said) << qPrintable(run.complained);
    ASSERT_EQ(run.objects().size(), 1U);
    const QJsonObject object = run.objects().front();
    EXPECT_EQ(linesOf(object), data.mrzLines());
    EXPECT_TRUE(object[QLatin1String("allCheckDigitsValid")].toBool());
    EXPECT_EQ(object[QLatin1String("format")].toString(), text("TD1"));
    EXPECT_EQ(object[QLatin1String("documentNumber")].toString(), data.documentNumber);
    EXPECT_EQ(object[QLatin1String("personalNumber")].toString(), data.identityNumber);
    EXPECT_EQ(object[QLatin1String("birthDate")].toString(), data.birthDate.toString(Qt::ISODate));
    EXPECT_EQ(object[QLatin1String("sex")].toString(), data.sex);
    const QJsonObject checks = object[QLatin1String("checkDigits")].toObject();
    EXPECT_EQ(checks[QLatin1String("final")][QLatin1String("digit")].toString(), data.mrzLines()[1].right(1));
    EXPECT_TRUE(checks[QLatin1String("final")][QLatin1String("valid")].toBool());
    EXPECT_TRUE(checks[QLatin1String("personalNumber")].isNull()) << "a card of three lines has none";
    ASSERT_TRUE(scene.corners);
    for (const QPointF& corner : cornersOf(object))
        EXPECT_TRUE(scene.corners->containsPoint(corner, Qt::OddEvenFill));
    const QJsonObject times = object[QLatin1String("milliseconds")].toObject();
    for (const char* stage : { "load", "search", "preprocess", "ocr", "parse", "total" })
        EXPECT_GT(times[QLatin1String(stage)].toDouble(), 0) << stage;
}

TEST_F(Cli, ReadsBandsAndPagesOfEveryFormat)
{
    QStringList files;
    std::vector<QStringList> truths;
    for (const auto format : { ocrb::BandFormat::TD1, ocrb::BandFormat::TD2, ocrb::BandFormat::TD3 }) {
        truths.push_back(ocrb::bandText(format, 7));
        const auto page = ocrb::paintPage(truths.back(), { .seed = 7, .width = 800, .degrees = -2 });
        ASSERT_TRUE(page);
        files << write(qPrintable(text("page%1.jpg").arg(truths.size())), page->picture);
    }
    truths.push_back(ocrb::bandText(ocrb::BandFormat::TD1, 8));
    const auto band = ocrb::paintBand(truths.back(), { .capital = 16 });
    ASSERT_TRUE(band);
    files << write("band.png", *band);
    const auto run = CliProcess::run(QStringList { text("mrz") } + files);
    const std::vector<QJsonObject> objects = run.objects();
    ASSERT_EQ(objects.size(), truths.size());
    for (std::size_t i = 0; i < truths.size(); ++i) {
        EXPECT_EQ(objects[i][QLatin1String("file")].toString(), files[qsizetype(i)]);
        EXPECT_EQ(linesOf(objects[i]), truths[i]) << qPrintable(files[qsizetype(i)]);
    }
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(Cli, FindsTheCardAndTheFaceThatAreThereInTheUprightPicture)
{
    const auto data = specimen::SpecimenData::fromSeed(4);
    specimen::SceneOptions options;
    options.seed = 4;
    const specimen::Scene scene = specimen::photograph(data, options);
    const QString file = write("front.jpg", photoOnItsSide(scene.image));
    const auto card = CliProcess::run({ text("card"), text("--annotate"), path("drawn.png"), file });
    ASSERT_EQ(card.exitCode, 0) << qPrintable(card.said);
    const QPolygonF corners = cornersOf(card.objects().front());
    ASSERT_EQ(corners.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_LT(QLineF(corners[i], (*scene.corners)[i]).length(), 8);
    const QImage drawn(path("drawn.png"));
    ASSERT_EQ(drawn.size(), scene.image.size());
    const QColor side = drawn.pixelColor(((corners[0] + corners[1]) / 2).toPoint());
    EXPECT_GT(side.red(), side.green() + 60) << "a side is drawn";

    const auto face = CliProcess::run({ text("face"), file });
    ASSERT_EQ(face.exitCode, 0) << qPrintable(face.said);
    const QJsonObject box = face.objects().front()[QLatin1String("faces")][0].toObject();
    const QRectF found(box[QLatin1String("x")].toDouble(), box[QLatin1String("y")].toDouble(),
        box[QLatin1String("width")].toDouble(), box[QLatin1String("height")].toDouble());
    EXPECT_TRUE(found.contains(scene.face->center()));
}

TEST_F(Cli, TellsForEachFileWhatIsWrongWithIt)
{
    QImage empty(300, 200, QImage::Format_RGB32);
    empty.fill(Qt::gray);
    QImage pixel(1, 1, QImage::Format_ARGB32);
    pixel.fill(Qt::transparent);
    QImage deep(200, 100, QImage::Format_RGBA64);
    deep.fill(QColor::fromRgba64(40000, 30000, 20000, 10000));
    QByteArray cut;
    QBuffer buffer(&cut);
    buffer.open(QIODevice::WriteOnly);
    specimen::photograph(specimen::SpecimenData::fromSeed(1), {}).image.save(&buffer, "PNG");
    const QByteArray cmyk = QByteArray::fromBase64(
        "/9j/7gAOQWRvYmUAZAAAAAAA/"
        "9sAQwAQCwwODAoQDg0OEhEQExgoGhgWFhgxIyUdKDozPTw5Mzg3QEhcTkBEV0U3OFBtUVdfYmdoZz5NcXlwZHhc"
        "ZWdj/8AAFAgAEAAQBEMRAE0RAFkRAEsRAP/EABYAAQEBAAAAAAAAAAAAAAAAAAADBv/EABQQAQAAAAAAAAAAAAAAAAAAAAD/"
        "2gAOBEMATQBZAEsA"
        "AD8Ammm0gAAAD//Z");
    const QString pipe = path("pipe.jpg"); // into which nobody ever writes
    ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0);
    struct Row
    {
        QString file;
        int exitCode;
    };
    const Row rows[] = {
        { path("missing.png"), 2 },
        { folder.path(), 2 },
        { write("empty.jpg", QByteArray()), 2 },
        { write("noise.jpg", QByteArray(4000, 'x')), 2 },
        { pipe, 2 },
        { write("drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='300' height='200'/>"), 2 },
        { write("cut.png", cut.left(cut.size() / 2)), 2 },
        { write("huge.pgm", QByteArray("P5 60000 60000 255\n")), 2 },
        { write("nothing.png", empty), 1 },
        { write("pixel.png", pixel), 1 },
        { write("deep.png", deep), 1 },
        { write("cmyk.jpg", cmyk), 1 },
    };
    for (const char* command : { "mrz", "card", "face" }) {
        QStringList arguments { text(command) };
        for (const Row& row : rows)
            arguments << row.file;
        const auto run = CliProcess::run(arguments);
        EXPECT_EQ(run.exitCode, 2) << "the worst of all files counts";
        const std::vector<QJsonObject> objects = run.objects();
        ASSERT_EQ(objects.size(), std::size(rows)) << command << qPrintable(run.complained);
        for (std::size_t i = 0; i < std::size(rows); ++i) {
            EXPECT_FALSE(objects[i][QLatin1String("found")].toBool(true));
            EXPECT_TRUE(objects[i][QLatin1String("reason")].toString().endsWith(u'.')) << qPrintable(rows[i].file);
            EXPECT_EQ(run.complained.contains(rows[i].file + u':'), rows[i].exitCode == 2) << qPrintable(rows[i].file);
        }
    }
    EXPECT_EQ(CliProcess::run({ text("card"), path("nothing.png") }).exitCode, 1);
}

TEST_F(Cli, RefusesWrongUsageAndHelps)
{
    QImage empty(300, 200, QImage::Format_RGB32);
    empty.fill(Qt::gray);
    const QString file = write("nothing.png", empty);
    struct Row
    {
        QStringList arguments;
        const char* complaint;
    };
    const Row rows[] = {
        { {}, "command" },
        { { text("mrz") }, "file" },
        { { text("frobnicate"), file }, "frobnicate" },
        { { text("mrz"), text("--nonsense"), file }, "--nonsense" },
        { { text("mrz"), text("--pretty=yes"), file }, "--pretty" },
        { { text("mrz"), file, text("--annotate") }, "--annotate" },
        { { text("mrz"), text("--annotate"), path("a.png"), file, file }, "one file" },
        { { text("mrz"), text("--annotate"), file, file }, "write over" },
        { { text("mrz"), text("--annotate=/no/such/folder/a.png"), file }, "cannot be written" },
        { { text("mrz"), text("--ocr-model"), folder.path(), file }, "OCR model" },
    };
    for (const Row& row : rows) {
        const auto run = CliProcess::run(row.arguments);
        EXPECT_EQ(run.exitCode, 2) << row.complaint;
        EXPECT_TRUE(run.complained.startsWith(text("kelvara: ")));
        EXPECT_TRUE(run.complained.contains(text(row.complaint))) << qPrintable(run.complained);
    }
    const auto help = CliProcess::run({ text("--help") });
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.said.contains(text("Exit code")));
    EXPECT_EQ(CliProcess::run({ text("--version") }).exitCode, 0);
    // Behind "--" even an option's name is a file.
    EXPECT_EQ(CliProcess::run({ text("card"), text("--"), text("--pretty") }).objects().size(), 1U);
    const auto pretty = CliProcess::run({ text("card"), text("--pretty"), file });
    EXPECT_GT(pretty.said.count(u'\n'), 5);
}

} // namespace
