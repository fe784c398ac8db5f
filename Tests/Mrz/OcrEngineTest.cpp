#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/OcrbModel.h"
#include "Platform/Mrz/OcrGlyphs.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <random>

namespace kelvara {
namespace {

using ocrb::BandCondition;
using ocrb::BandFormat;

TesseractEngine engineOf(
    const TesseractDataSource& source, TesseractEngineMode mode = TesseractEngineMode::TesseractOnly)
{
    return { QStringLiteral("ocrb"), source, mode };
}

QByteArray model()
{
    QFile file(ocrbModelFolder() + QStringLiteral("/ocrb.traineddata"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage prepared(BandFormat format, const ocrb::BandOptions& options)
{
    FilterVendor::registerFilters();
    const auto band = ocrb::paintBand(ocrb::bandText(format, options.seed), options);
    return band ? preprocessImage(*band).value_or(QImage()) : QImage();
}

QString textOf(const TesseractResult& result)
{
    const auto* text = std::get_if<TesseractText>(&result);
    return text ? text->string : QStringLiteral("error: ") + std::get<TesseractError>(result).sentence;
}

TEST(OcrEngine, ReadsTheSameFromEverySourceAndEveryTime)
{
    const QImage image = prepared(BandFormat::TD3, { .seed = 5'000'001 });
    const QString truth = ocrb::bandText(BandFormat::TD3, 5'000'001).join(u'\n') + u'\n';
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("ocrb.traineddata")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(model()) > 100'000);
    file.close();
    for (const TesseractDataSource& source :
        { TesseractDataSource(model()), TesseractDataSource(folder.path()), TesseractDataSource(ocrbModelFolder()) }) {
        testing::internal::CaptureStderr();
        TesseractEngine engine = engineOf(source);
        const QString first = textOf(engine.performOCR(image));
        (void)engine.performOCR(prepared(BandFormat::TD1, ocrb::bandOptions(BandCondition::StrongBlur, 16, 5'000'002)));
        EXPECT_EQ(textOf(engine.performOCR(image)), first);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(first, truth);
    }
}

TEST(OcrEngine, TellsHowSureItIs)
{
    TesseractEngine engine = engineOf(ocrbModelFolder());
    const auto result = engine.performOCR(prepared(BandFormat::TD1, { .seed = 5'000'003 }));
    const auto* text = std::get_if<TesseractText>(&result);
    ASSERT_TRUE(text);
    ASSERT_EQ(text->lines.size(), 3U);
    for (const MrzLineReading& line : text->lines) {
        ASSERT_EQ(line.certainties.size(), 30U);
        ASSERT_EQ(line.alternatives.size(), 30U);
        for (qsizetype i = 0; i < 30; ++i) {
            EXPECT_GT(line.certainties[std::size_t(i)], 0.5F);
            EXPECT_LE(line.certainties[std::size_t(i)], 1.0F);
            EXPECT_FALSE(line.alternatives[std::size_t(i)].contains(line.text[i]));
        }
    }
}

TEST(OcrEngine, SaysWhyThereIsNoModel)
{
    using Kind = TesseractError::Kind;
    struct Row
    {
        TesseractDataSource source;
        TesseractEngineMode mode;
        Kind kind;
    };
    QByteArray cut = model();
    cut.truncate(cut.size() / 3);
    const auto classic = TesseractEngineMode::TesseractOnly;
    const Row rows[] = { { QStringLiteral("/nowhere"), classic, Kind::MissingModel },
        { QByteArray(), classic, Kind::MissingModel }, { QByteArray("no model"), classic, Kind::UnusableModel },
        { QByteArray(100000, 'x'), classic, Kind::UnusableModel }, { cut, classic, Kind::UnusableModel },
        { model(), TesseractEngineMode::LstmOnly, Kind::UnusableModel } };
    const QImage image = prepared(BandFormat::TD1, { .seed = 5'000'004 });
    for (const Row& row : rows) {
        testing::internal::CaptureStderr();
        TesseractEngine engine = engineOf(row.source, row.mode);
        for (int i = 0; i < 2; ++i) {
            const auto result = engine.performOCR(image);
            const auto* error = std::get_if<TesseractError>(&result);
            ASSERT_TRUE(error) << int(row.mode) << textOf(result).toStdString();
            EXPECT_EQ(error->kind, row.kind) << error->sentence.toStdString();
            EXPECT_TRUE(error->sentence.contains(QStringLiteral("\"ocrb\"")));
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
}

TEST(OcrEngine, TakesImagesOfAnyKind)
{
    TesseractEngine engine = engineOf(ocrbModelFolder());
    const auto none = engine.performOCR(UIImage());
    ASSERT_TRUE(std::holds_alternative<TesseractError>(none));
    EXPECT_EQ(std::get<TesseractError>(none).kind, TesseractError::Kind::NoImage);
    for (const QSize size : { QSize(1, 1), QSize(3, 900), QSize(2000, 1), QSize(640, 90) }) {
        for (const QColor color :
            { QColor(Qt::black), QColor(Qt::white), QColor(Qt::transparent), QColor(7, 99, 200) }) {
            QImage image(size, QImage::Format_ARGB32_Premultiplied);
            image.fill(color);
            EXPECT_EQ(textOf(engine.performOCR(image)), QString());
        }
    }
    QImage noise(900, 200, QImage::Format_Grayscale8);
    std::mt19937 random(1);
    for (int y = 0; y < 200; ++y)
        std::generate_n(noise.scanLine(y), 900, [&] { return uchar(random()); });
    EXPECT_LT(textOf(engine.performOCR(noise)).size(), 200);

    const QImage image = prepared(BandFormat::TD1, { .seed = 5'000'005 });
    const QString truth = ocrb::bandText(BandFormat::TD1, 5'000'005).join(u'\n') + u'\n';
    for (const auto format : { QImage::Format_Mono, QImage::Format_Grayscale8, QImage::Format_RGB888,
             QImage::Format_RGBA8888, QImage::Format_RGB32 })
        EXPECT_EQ(textOf(engine.performOCR(image.convertToFormat(format))), truth) << int(format);
    const QImage sideways = image.transformed(QTransform().rotate(90));
    EXPECT_EQ(textOf(engine.performOCR(UIImage(sideways, 1, UIImageOrientation::Left))), truth);
    QImage clear = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < clear.height(); ++y) {
        for (int x = 0; x < clear.width(); ++x) {
            if (qRed(clear.pixel(x, y)) == 255)
                clear.setPixel(x, y, 0);
        }
    }
    EXPECT_EQ(textOf(engine.performOCR(clear)), truth); // what is transparent is paper
}

TEST(OcrModel, IsTheOneItsChecksumNames)
{
    QFile glyphs(QStringLiteral(":/kelvara-mrz/glyphs.bin"));
    QFile sum(QStringLiteral(":/kelvara-mrz/glyphs.bin.sha256"));
    (void)ocr::GlyphClassifier::shared(); // registers the resources
    ASSERT_TRUE(glyphs.open(QIODevice::ReadOnly) && sum.open(QIODevice::ReadOnly));
    const QByteArray bytes = glyphs.readAll();
    EXPECT_EQ(sum.readAll().left(64), QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    EXPECT_EQ(ocr::GlyphClassifier::fromBytes(bytes)->bytes(), bytes);
    EXPECT_FALSE(ocr::GlyphClassifier::fromBytes(bytes.chopped(1)));
    EXPECT_FALSE(ocr::GlyphClassifier::fromBytes(QByteArray(bytes.size(), 'x')));
    QFile file(ocrbModelFolder() + QStringLiteral("/ocrb.traineddata.sha256"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().left(64), QCryptographicHash::hash(model(), QCryptographicHash::Sha256).toHex());
}

} // namespace
} // namespace kelvara
