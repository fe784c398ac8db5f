#include "Tests/Demo/DemoProcess.h"
#include "Tools/Specimen/Scene.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QMap>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

using namespace kelvara;

namespace {

#ifdef KELVARA_HAS_CALLS
constexpr bool kHasCalls = true;
#else
constexpr bool kHasCalls = false;
#endif
constexpr auto kAmpleLimit = "240"; // a sanitizer's build takes its time

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
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

/// Correlation of two pictures' brightness, both made equally small: 1 is the same but for light and contrast.
double likeness(const QImage& one, const QImage& other)
{
    const auto small = [](const QImage& image) {
        const QImage grey = image.scaled(64, 40, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                .convertToFormat(QImage::Format_Grayscale8);
        std::vector<double> values;
        for (int y = 0; y < grey.height(); ++y)
            values.insert(values.end(), grey.constScanLine(y), grey.constScanLine(y) + grey.width());
        const double mean = std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
        for (double& value : values)
            value -= mean;
        return values;
    };
    const auto product
        = [](const auto& a, const auto& b) { return std::inner_product(a.begin(), a.end(), b.begin(), 0.0); };
    const auto a = small(one);
    const auto b = small(other);
    return product(a, b) / std::sqrt(product(a, a) * product(b, b));
}

/// The picture of a delegate's call as its file holds it, checked against what result.json says of it.
QImage delivered(const QDir& folder, int call, int picture)
{
    const QJsonObject entry = resultIn(folder)[text("delegateCalls")][call][text("pictures")][picture].toObject();
    const QImage image(folder.filePath(entry[text("file")].toString()), "PNG");
    // The chip's portrait comes as an image alone.
    EXPECT_TRUE(entry[text("isBase64")].toBool(entry[text("argument")] == text("faceImage")));
    EXPECT_TRUE(entry[text("isPng")].toBool());
    EXPECT_TRUE(entry[text("isTheSamePicture")].toBool());
    EXPECT_EQ(image.size(), QSize(entry[text("width")].toInt(), entry[text("height")].toInt()));
    return image;
}

/// The reading that the back waited for.
void expectMrzOf(const specimen::SpecimenData& data, const QJsonObject& result)
{
    const QJsonValue mrz = result[text("mrz")];
    EXPECT_EQ(mrz[text("documentNumber")].toString(), data.documentNumber);
    EXPECT_EQ(mrz[text("personalNumber")].toString(), data.identityNumber);
    EXPECT_EQ(mrz[text("birthDate")].toString(), data.birthDate.toString(Qt::ISODate));
    EXPECT_EQ(mrz[text("expiryDate")].toString(), data.expiryDate.toString(Qt::ISODate));
}

/// The chip is that of the card whose zone was read, and was proven genuine.
void expectChipOf(const specimen::SpecimenData& data, const QJsonObject& result)
{
    const QJsonValue chip = result[text("chip")];
    const QJsonValue document = chip[text("document")];
    EXPECT_EQ(document[text("number")], result[text("mrz")][text("documentNumber")]);
    EXPECT_EQ(document[text("number")].toString(), data.documentNumber);
    EXPECT_EQ(document[text("personalNumber")].toString(), data.identityNumber);
    EXPECT_EQ(document[text("mrz")].toString(), data.mrzLines().join(QString()));
    const QJsonValue proofs = chip[text("verification")];
    EXPECT_EQ(proofs[text("pace")].toString(), text("succeeded"));
    EXPECT_EQ(proofs[text("chipAuthentication")].toString(), text("succeeded"));
    EXPECT_EQ(proofs[text("signature")].toString(), text("valid"));
    EXPECT_EQ(proofs[text("signer")].toString(), text("trusted"));
}

QStringList screensOf(const QJsonObject& result, const char* kind)
{
    QStringList screens;
    for (const QJsonValue& screen : result[text(kind)].toArray())
        screens.append(screen.toString().section(QLatin1Char('-'), 2).chopped(4));
    return screens;
}

/// The card's portrait as it is printed.
QImage printedPortrait(const specimen::SpecimenData& data)
{
    const QImage front = specimen::printFront(data);
    return front.copy(QTransform::fromScale(front.width(), front.height()).mapRect(specimen::portraitRect()).toRect());
}

TEST(Flow, CompletesAndLeavesProof)
{
    const QTemporaryDir out;
    const QDir folder(out.path());
    writeFile(folder.filePath(text("picture-99-old.png")), "stale");
    writeFile(folder.filePath(text("holiday.png")), "not ours");
    const DemoProcess demo = DemoProcess::run(
        { text("--out"), out.path(), text("--seed"), text("7"), text("--limit"), text(kAmpleLimit) });
    ASSERT_EQ(demo.exitCode, 0) << qPrintable(demo.complained);
    EXPECT_TRUE(demo.complained.isEmpty()) << qPrintable(demo.complained);
    EXPECT_FALSE(folder.exists(text("picture-99-old.png")));
    EXPECT_TRUE(folder.exists(text("holiday.png")));

    const QJsonObject result = resultIn(folder);
    QJsonArray steps { text("idPhoto"), text("selfie"), text("nfcRead") };
    if (kHasCalls)
        steps.append(text("jitsi"));
    EXPECT_EQ(result[text("steps")].toArray(), steps);
    const int waited = result[text("waitedForPeopleMilliseconds")].toInt();
    EXPECT_GT(waited, 0);
    EXPECT_LT(waited, result[text("flowMilliseconds")].toInt());
    QStringList methods;
    for (const QJsonValue& call : result[text("delegateCalls")].toArray())
        methods.append(call[text("method")].toString());
    QStringList expected { text("didCaptureIdFrontPhoto"), text("didCaptureIdBackPhoto"), text("didCaptureSelfiePhoto"),
        text("didReadNfc"), text("didClose") };
    if (kHasCalls)
        expected.insert(4, text("didDetectSdkDataBeforeJitsi"));
    ASSERT_EQ(methods, expected);
    if (kHasCalls) {
        const QJsonObject call = result[text("call")].toObject();
        EXPECT_TRUE(call[text("hasVideo")].toBool());
        EXPECT_TRUE(call[text("hasAudio")].toBool());
        EXPECT_GT(call[text("talkMilliseconds")].toInt(), 0);
    }

    const auto data = specimen::SpecimenData::fromSeed(7);
    expectMrzOf(data, result);
    EXPECT_NEAR(delivered(folder, 0, 0).width(), 798, 2); // 351 of the 844 points that 1920 pixels fill
    EXPECT_GT(likeness(delivered(folder, 0, 1), specimen::printFront(data)), 0.8);
    EXPECT_GT(likeness(delivered(folder, 1, 1), specimen::printBack(data)), 0.8);
    EXPECT_NEAR(delivered(folder, 2, 0).width(), 682, 2);
    EXPECT_LT(delivered(folder, 2, 1).width(), 600);

    expectChipOf(data, result);
    const QJsonValue chip = result[text("chip")];
    EXPECT_EQ(chip[text("details")][text("fullName")].toString(), data.givenNames + u' ' + data.surname);
    EXPECT_FALSE(chip[text("details")][text("placeOfBirth")].toString().isEmpty());
    QMap<QString, int> sizes;
    for (const QJsonValue& file : chip[text("files")].toArray())
        sizes.insert(file[text("file")].toString(), file[text("bytes")].toInt());
    EXPECT_EQ(sizes.value(text("DG1")), 95) << "90 characters and three headers";
    EXPECT_GT(sizes.value(text("DG2")), 10000);
    for (const char* file : { "DG11", "DG12", "DG14", "EF.SOD" })
        EXPECT_GT(sizes.value(text(file)), 0) << file;
    const QImage printed = printedPortrait(data);
    const QImage portrait = delivered(folder, 3, 0);
    EXPECT_EQ(portrait.size(), printed.size());
    EXPECT_GT(likeness(portrait, printed), 0.98);

    for (const char* kind : { "screens", "gallery" }) {
        for (const QJsonValue& screen : result[text(kind)].toArray())
            EXPECT_EQ(QImage(folder.filePath(screen.toString())).size(), QSize(780, 1688))
                << qPrintable(screen.toString());
    }
    QStringList screens { text("front-waiting"), text("front-ready"), text("flip-hint"), text("back-ready"),
        text("selfie-waiting"), text("selfie-ready"), text("chip-waiting"), text("chip-present"), text("chip-reading"),
        text("chip-read") };
    screens += kHasCalls ? QStringList { text("call-waiting"), text("call"), text("call-ended") }
                         : QStringList { text("finished") };
    EXPECT_EQ(screensOf(result, "screens"), screens);
    if (kHasCalls) {
        const auto brightness = [&](int screen) {
            const QImage image(folder.filePath(result[text("screens")][screen].toString()));
            return qGray(image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0));
        };
        EXPECT_GT(brightness(11), 80) << "the representative in a lit room";
        EXPECT_LT(brightness(12), 50) << "the dark screen after the call";
    }
    const QImage sheet(folder.filePath(text("contact-sheet.png")));
    EXPECT_GT(sheet.width(), 2000);
    QFile report(folder.filePath(text("report.html")));
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(report.readAll());
    EXPECT_FALSE(page.contains(text("{{")));
    for (const QString& told : { data.documentNumber, text("screen-01-front-waiting.png"), text("didReadNfc") })
        EXPECT_TRUE(page.contains(told)) << qPrintable(told);
    EXPECT_EQ(screensOf(result, "gallery"),
        QStringList({ text("no-back-camera"), text("no-front-camera"), text("nfc-required"), text("no-steps"),
            text("nfc-step-without-nfc"), text("waiting-for-the-call"), text("call-without-a-server") }));
}

TEST(Flow, TakesAPhonesPhotographsOnTheirSidesAndALostCard)
{
    const QTemporaryDir place;
    const auto data = specimen::SpecimenData::fromSeed(3);
    specimen::SceneOptions options;
    options.seed = 3;
    options.size = QSize(1500, 2000);
    options.fill = 0.7;
    options.rollDegrees = 12;
    const auto photo = [&](specimen::Subject side, const char* name) {
        options.subject = side;
        const QString path = place.filePath(text(name));
        writeFile(path, photoOnItsSide(specimen::photograph(data, options).image));
        return path;
    };

    const QDir folder(place.filePath(text("out")));
    const DemoProcess demo = DemoProcess::run({ text("--card-front"), photo(specimen::Subject::Front, "front.jpg"),
        text("--card-back"), photo(specimen::Subject::Back, "back.jpg"), text("--out"), folder.path(),
        text("--lose-card"), text("--no-call"), text("--limit"), text(kAmpleLimit) });
    ASSERT_EQ(demo.exitCode, 0) << qPrintable(demo.said + demo.complained);
    EXPECT_EQ(demo.said.count(text("the card was found")), 2) << qPrintable(demo.said);
    EXPECT_GT(likeness(delivered(folder, 0, 1), specimen::printFront(data)), 0.8);
    EXPECT_GT(likeness(delivered(folder, 1, 1), specimen::printBack(data)), 0.8);
    const QJsonObject result = resultIn(folder);
    expectMrzOf(data, result);
    expectChipOf(data, result);
    EXPECT_EQ(result[text("chip")][text("details")].toObject(), QJsonObject()) << "nobody told of any";
    // With more or less room around the face than is printed, yet the same person.
    const QImage portrait = delivered(folder, 3, 0);
    const QImage printed = printedPortrait(data);
    EXPECT_NEAR(double(portrait.width()) / portrait.height(), 413.0 / 531, 0.03);
    EXPECT_GT(portrait.width(), 200);
    EXPECT_GT(likeness(portrait, printed), 0.6);
    EXPECT_TRUE(screensOf(result, "screens").contains(text("chip-lost")));
}

/// Whose chip is held there is not the card that the camera saw at last.
TEST(Flow, TellsThatTheChipIsAnotherCards)
{
    const QTemporaryDir place;
    const QDir backs(place.filePath(text("backs")));
    ASSERT_TRUE(backs.mkpath(text(".")));
    specimen::SceneOptions options;
    options.subject = specimen::Subject::Back;
    options.size = QSize(1200, 850);
    constexpr int kPictures = 60; // a quarter of a minute
    for (int i = 0; i < kPictures; ++i) {
        const QString path = backs.filePath(QStringLiteral("%1.jpg").arg(i, 2, 10, QLatin1Char('0')));
        if (i < 2)
            ASSERT_TRUE(specimen::photograph(specimen::SpecimenData::fromSeed(i == 0 ? 5 : 6), options)
                            .image.save(path, "JPEG", 92));
        else
            ASSERT_TRUE(QFile::copy(backs.filePath(text("01.jpg")), path));
    }
    const QString out = place.filePath(text("out"));
    const DemoProcess demo = DemoProcess::run(
        { text("--card-back"), backs.path(), text("--out"), out, text("--limit"), text(kAmpleLimit) });
    EXPECT_EQ(demo.exitCode, 1);
    EXPECT_TRUE(demo.complained.contains(text("could not be read (WrongKey)"))) << qPrintable(demo.complained);
    EXPECT_TRUE(demo.complained.contains(text("Kart, okunan bilgilerle açılamadı."))) << qPrintable(demo.complained);
    const QJsonObject result = resultIn(QDir(out));
    EXPECT_TRUE(result[text("chip")].isNull());
    EXPECT_EQ(result[text("delegateCalls")].toArray().size(), 3) << "the photographs";
}

TEST(Flow, SaysWhatIsMissingWhenItGivesUp)
{
    const QTemporaryDir place;
    QImage blank(900, 600, QImage::Format_RGB32);
    blank.fill(QColor(0x3c, 0x43, 0x4b)); // the very colour that pictures are laid on
    const QString photo = place.filePath(text("blank.png"));
    ASSERT_TRUE(blank.save(photo));
    const QString out = place.filePath(text("out"));
    const struct
    {
        const char* side;
        const char* limit;
        const char* sentence;
    } rows[] = { { "--card-front", "3", "no card rectangle" }, { "--card-back", "8", "no machine-readable lines" } };
    for (const auto& row : rows) {
        const DemoProcess demo
            = DemoProcess::run({ text(row.side), photo, text("--out"), out, text("--limit"), text(row.limit) });
        EXPECT_EQ(demo.exitCode, 1);
        EXPECT_TRUE(demo.complained.contains(text("not complete within"))) << qPrintable(demo.complained);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        EXPECT_TRUE(demo.complained.contains(text(row.sentence)))
            << qPrintable(demo.complained); // in time to get there
#endif
        const QJsonObject result = resultIn(QDir(out));
        EXPECT_FALSE(result[text("completed")].toBool(true));
        const bool hasZone = text(row.side) == text("--card-front");
        EXPECT_EQ(result[text("steps")].toArray().contains(text("nfcRead")), hasZone);
        EXPECT_EQ(demo.said.contains(text("The chip is not read")), !hasZone) << qPrintable(demo.said);
    }
}

struct Refusal
{
    const char* name;
    QStringList arguments; ///< "@" stands for the place with the files.
    const char* sentence;

    friend void PrintTo(const Refusal& refusal, std::ostream* stream) { *stream << refusal.name; }
};

class DemoRefusals : public testing::TestWithParam<Refusal>
{ };

TEST_P(DemoRefusals, EndWithOneSentence)
{
    const QTemporaryDir place;
    ASSERT_TRUE(QDir(place.path()).mkdir(text("empty")));
    writeFile(place.filePath(text("letter.jpg")), "Dear Sir or Madam");
    writeFile(
        place.filePath(text("broken.mp4")), QByteArray::fromHex("00000018667479706d703432") + QByteArray(4000, 'x'));
    ASSERT_TRUE(QDir(place.path()).mkdir(text("out")));
    writeFile(place.filePath(text("out/picture-01-mine.png")), "kept");
    QStringList arguments { text("--out"), place.filePath(text("out")) };
    for (QString argument : GetParam().arguments)
        arguments.append(argument.replace(QLatin1Char('@'), place.path()));
    const DemoProcess demo = DemoProcess::run(arguments);
    EXPECT_EQ(demo.exitCode, 2);
    EXPECT_TRUE(demo.complained.contains(text(GetParam().sentence))) << qPrintable(demo.complained);
    EXPECT_TRUE(QFile::exists(place.filePath(text("out/picture-01-mine.png")))) << "a refusal costs no earlier result";
    const bool isUsage = demo.complained.contains(text("Usage:"));
    EXPECT_TRUE(isUsage || demo.complained.count(QLatin1Char('\n')) == 1) << qPrintable(demo.complained);
}

INSTANTIATE_TEST_SUITE_P(Rows, DemoRefusals,
    testing::Values(Refusal { "UnknownOption", { text("--nonsense") }, "\"--nonsense\" is not an option" },
        Refusal { "NoValue", { text("--seed") }, "--seed needs a value" },
        Refusal { "LettersTooLarge", { text("--text-scale"), text("4") }, "a number from 1 to 3" },
        Refusal { "NotANumber", { text("--seed"), text("x") }, "--seed cannot be \"x\"" },
        Refusal { "TooSmall", { text("--size"), text("10x10") }, "--size cannot be \"10x10\"" },
        Refusal { "NoTime", { text("--limit=0") }, "--limit cannot be \"0\"" },
        Refusal {
            "CameraAndFile", { text("--camera"), text("--selfie"), text("me.jpg") }, "--camera takes its pictures" },
        Refusal { "LosesARealCard", { text("--camera"), text("--lose-card") }, "--lose-card is for" },
        Refusal { "NoSuchFile", { text("--selfie"), text("@/none.png") }, "There is no file or folder" },
        Refusal { "NotAPicture", { text("--card-front"), text("@/letter.jpg") }, "letter.jpg" },
        Refusal { "EmptyFolder", { text("--card-back"), text("@/empty") }, "empty" },
        Refusal { "DamagedVideo", { text("--selfie"), text("@/broken.mp4") }, "broken.mp4" },
        Refusal { "InputInOut", { text("--selfie"), text("@/out/picture-01-mine.png") }, "lies in the out folder" },
        Refusal { "ByHandUnseen", { text("--by-hand") }, "--by-hand needs a display" },
        Refusal { "OutIsAFile", { text("--out"), text("@/letter.jpg") }, "cannot be made" }),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
