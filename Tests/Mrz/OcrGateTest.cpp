#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/OcrbModel.h"
#include "Platform/Mrz/MrzLines.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Specimen/Dice.h"

#include <QPainter>

#include <cstdio>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using ocrb::BandCondition;
using ocrb::BandFormat;

/// A band all the way to fields.
class Reader
{
public:
    Reader() { FilterVendor::registerFilters(); }

    std::optional<QKMRZResult> read(const QImage& band)
    {
        const auto prepared = preprocessImage(band);
        const TesseractResult result = m_engine.performOCR(prepared.value_or(QImage()));
        const auto* text = std::get_if<TesseractText>(&result);
        const auto lines = text ? mrzLines(text->lines) : std::nullopt;
        return lines ? m_parser.parse(*lines) : std::nullopt;
    }

private:
    TesseractEngine m_engine { QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly };
    QKMRZParser m_parser { true };
};

bool isLight()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return qEnvironmentVariableIsSet("KELVARA_LIGHT_GATES");
#endif
}

struct Gate
{
    const char* name;
    BandCondition condition;
    int bands;
    double least;
    std::uint32_t seed;
};

class OcrGate : public testing::TestWithParam<Gate>
{ };

// Together 1000 degraded bands that nothing was trained or tuned on, with floors somewhat under what
// kelvara-evaluate-mrz-ocr measures, so that chance does not fail them.
TEST_P(OcrGate, BandsAreReadAndNoneIsMisread)
{
    const Gate& gate = GetParam();
    const int count = isLight() ? 6 : gate.bands;
    if (isLight())
        std::printf("Reduced under sanitizers: %d bands instead of %d, and no floor.\n", count, gate.bands);
    Reader reader;
    int read = 0;
    int wrongNames = 0;
    for (int i = 0; i < count; ++i) {
        const std::uint32_t seed = gate.seed + std::uint32_t(i);
        const BandFormat format = i % 3 == 0 ? BandFormat::TD3 : BandFormat::TD1;
        const QStringList truth = ocrb::bandText(format, seed);
        const auto band = ocrb::paintBand(truth, ocrb::bandOptions(gate.condition, 16 + i % 9, seed));
        ASSERT_TRUE(band);
        const auto parsed = reader.read(*band);
        const auto expected = QKMRZParser(false).parse(truth);
        ASSERT_TRUE(expected);
        if (!parsed || !parsed->allCheckDigitsValid)
            continue;
        EXPECT_EQ(parsed->documentNumber, expected->documentNumber) << seed;
        EXPECT_EQ(parsed->birthDate, expected->birthDate) << seed;
        EXPECT_EQ(parsed->expiryDate, expected->expiryDate) << seed;
        EXPECT_EQ(parsed->personalNumber, expected->personalNumber) << seed;
        EXPECT_EQ(parsed->personalNumber2, expected->personalNumber2) << seed;
        const bool sameName = parsed->surnames == expected->surnames && parsed->givenNames == expected->givenNames;
        wrongNames += sameName ? 0 : 1;
        read += sameName ? 1 : 0;
    }
    std::printf("%s: %d of %d read, %d with a wrong name\n", gate.name, read, count, wrongNames);
    EXPECT_GE(read, isLight() ? 0 : gate.least * count);
    EXPECT_LE(wrongNames, count / 100 + 1);
}

INSTANTIATE_TEST_SUITE_P(Bands, OcrGate,
    testing::Values(Gate { "clean", BandCondition::Clean, 40, 0.97, 5'100'000 },
        Gate { "noise", BandCondition::Noise, 250, 0.96, 5'101'000 },
        Gate { "slight", BandCondition::SlightBlur, 250, 0.96, 5'102'000 },
        Gate { "mixed", BandCondition::Mixed, 250, 0.93, 5'103'000 },
        Gate { "strong", BandCondition::StrongBlur, 250, 0.60, 5'104'000 }),
    [](const auto& gate) { return std::string(gate.param.name); });

QImage smallPrint(std::uint32_t seed)
{
    static const QStringList words
        = QStringLiteral("SOYADI SURNAME I<TUR KIMLIK 10000000146 VALID UNTIL 12.05.2031 T.C. "
                         "ANNE ADI MOTHER NAME <<< ICISLERI BAKANLIGI A12B34567 850809 M F")
              .split(u' ');
    specimen::Dice dice(seed, 3);
    QImage image(900, 150, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setPixelSize(dice.integer(14, 34));
    painter.setFont(font);
    for (int y = 36; y < 145; y += dice.integer(36, 50)) {
        QString line;
        while (line.size() < 60)
            line += words[dice.integer(0, int(words.size()) - 1)] + (dice.chance(0.6) ? QString() : QString(u' '));
        painter.drawText(10, y, line);
    }
    return image;
}

QImage barCode(std::uint32_t seed)
{
    specimen::Dice dice(seed, 4);
    QImage image(900, 150, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const int rows = dice.integer(1, 3);
    for (int row = 0; row < rows; ++row) {
        for (int x = 12; x < 880; x += dice.integer(4, 14))
            painter.fillRect(x, 12 + row * 46, dice.integer(2, 8), rows == 1 ? 120 : 30, Qt::black);
    }
    return image;
}

TEST(OtherPrint, IsNoZone)
{
    Reader reader;
    const std::uint32_t count = isLight() ? 4 : 30;
    if (isLight())
        std::printf("Reduced under sanitizers: %u pictures of each kind.\n", count);
    for (std::uint32_t seed = 0; seed < count; ++seed) {
        for (const QImage& image : { smallPrint(seed), barCode(seed) }) {
            const auto parsed = reader.read(image);
            EXPECT_FALSE(parsed && parsed->allCheckDigitsValid) << seed;
        }
    }
}

} // namespace
} // namespace kelvara
