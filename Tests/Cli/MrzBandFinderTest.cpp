#include "Platform/Vision/MrzBandFinder.h"

#include "Kelvara/MrzConsensus.h"
#include "Kelvara/MrzPrint.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Vision/MrzBandImage.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Ocrb/PagePainter.h"
#include "Tools/Specimen/Scene.h"

#include <QTransform>

#include <gtest/gtest.h>

using namespace kelvara;
using namespace kelvara::ocrb;

namespace {

/// By how much the band's corners miss the zone's, in pitches.
double farthestMiss(const MrzBand& band, const QPolygonF& zone)
{
    double farthest = 0;
    for (int i = 0; i < 4; ++i)
        farthest = std::max(farthest, QLineF(band.corners[std::size_t(i)], zone[i]).length() / band.pitch);
    return farthest;
}

struct PageRow
{
    const char* name;
    BandFormat format;
    PageOptions options;
};

class MrzBandFinderPages : public testing::TestWithParam<PageRow>
{ };

TEST_P(MrzBandFinderPages, FindsTheZoneFirst)
{
    const auto& [name, format, options] = GetParam();
    const QStringList lines = bandText(format, options.seed);
    const auto page = paintPage(lines, options);
    ASSERT_TRUE(page);
    const std::vector<MrzBand> bands = findMrzBands(page->picture);
    ASSERT_FALSE(bands.empty());
    const MrzBand& band = bands.front();
    EXPECT_EQ(band.lines, lines.size());
    EXPECT_EQ(band.characters, lines.front().size());
    EXPECT_LT(farthestMiss(band, page->zone), 0.9);
    EXPECT_NEAR(band.capital / band.pitch, 1, 0.15);

    const QImage drawn = drawMrzBand(page->picture, band, { .capital = 20 });
    EXPECT_NEAR(drawn.width(), 20.0 * double(lines.front().size()), 20 * 5);
    EXPECT_LT(drawn.height(), 20 * 10);
}

INSTANTIATE_TEST_SUITE_P(Sizes, MrzBandFinderPages,
    testing::Values(PageRow { "SmallCard", BandFormat::TD1, { .seed = 21, .width = 260 } },
        PageRow { "SmallPassport", BandFormat::TD3, { .seed = 22, .width = 520, .degrees = 1 } },
        PageRow { "LargeCard", BandFormat::TD1, { .seed = 23, .width = 2400, .degrees = -4, .noise = 6 } },
        PageRow { "Phone", BandFormat::TD3, { .seed = 24, .width = 4000, .degrees = 3, .isOnTable = true } },
        PageRow { "Blurred", BandFormat::TD2, { .seed = 25, .width = 700, .blur = 0.9, .noise = 4 } },
        PageRow { "Steep", BandFormat::TD2, { .seed = 26, .width = 900, .degrees = 7, .isOnTable = true } },
        PageRow { "Poor", BandFormat::TD3, { .seed = 27, .width = 640, .isPoor = true } }),
    [](const auto& row) { return row.param.name; });

TEST(MrzBandFinder, FindsNothingWhereThereIsNoZone)
{
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_TRUE(findMrzBands(image).empty());
    EXPECT_TRUE(findMrzBands(QImage()).empty());
    EXPECT_TRUE(findMrzBands(QImage(1, 1, QImage::Format_RGB32)).empty());
    for (const QSize size : { QSize(30000, 16), QSize(16, 30000), QSize(64, 64), QSize(9000, 100) }) {
        QImage stripes(size, QImage::Format_RGB32);
        stripes.fill(Qt::white);
        for (int x = 0; x < stripes.width(); x += 7) {
            for (int y = 0; y < stripes.height(); ++y)
                stripes.setPixel(x, y, y % 20 < 9 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
        }
        for (const MrzBand& band : findMrzBands(stripes))
            EXPECT_LT(drawMrzBand(stripes, band, {}).width(), 4000);
    }
    for (const auto background : { specimen::Background::TextPage, specimen::Background::Keyboard }) {
        specimen::SceneOptions options;
        options.subject = specimen::Subject::Nothing;
        options.background = background;
        EXPECT_TRUE(findMrzBands(specimen::photograph(specimen::SpecimenData::fromSeed(1), options).image).empty());
    }
}

TEST(MrzBandFinder, SeesAslantPrintAsSquatAndDrawsItAsHighAsWide)
{
    const QStringList lines = bandText(BandFormat::TD3, 31);
    const auto page = paintPage(lines, { .seed = 31, .width = 1400 });
    ASSERT_TRUE(page);
    const QImage squat = page->picture.scaled(
        1400, int(page->picture.height() * 0.7), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto bands = findMrzBands(squat);
    ASSERT_FALSE(bands.empty());
    EXPECT_NEAR(bands.front().capital / bands.front().pitch, 0.7, 0.08);
    const QImage upright = drawMrzBand(page->picture, findMrzBands(page->picture).front(), {});
    const QImage corrected = drawMrzBand(squat, bands.front(), {});
    EXPECT_NEAR(double(corrected.height()) / upright.height(), 1, 0.12);
}

MrzLineReading reading(const char* text, float certainty)
{
    MrzLineReading line { QString::fromLatin1(text), {}, {} };
    line.certainties.assign(std::size_t(line.text.size()), certainty);
    line.alternatives.assign(std::size_t(line.text.size()), QString());
    return line;
}

TEST(MrzConsensus, TakesWhatMostAreCertainOfAndDoubtsWhereTheyDiffer)
{
    const auto agreed = consensusOf({ { reading("AB8D", 0.9F) }, { reading("ABBD", 0.99F) }, { reading("AB8D", 0.9F) },
        { reading("AB8DX", 1.0F) } });
    ASSERT_EQ(agreed.size(), 1U);
    EXPECT_EQ(agreed[0].text, QStringLiteral("AB8D")) << "the longer one does not count";
    EXPECT_FLOAT_EQ(agreed[0].certainties[0], 0.99F);
    EXPECT_LT(agreed[0].certainties[2], 0.7F);
    EXPECT_EQ(agreed[0].alternatives[2], QStringLiteral("B"));
    EXPECT_TRUE(consensusOf({}).empty());
}

TEST(MrzPrint, KeepsDigitsThatAreCertainlyPrintedWhereGrammarHasLetters)
{
    const std::vector<MrzLineReading> lines { reading("C1UTO3158847206<<<<<<<<<<<<<<<", 0.99F),
        reading("7104139F3102271UTO<<<<<<<<<<<8", 0.99F), reading("LINDGREN<<VERA<<<<<<<<<<<<<<<<", 0.99F) };
    const auto result = QKMRZParser(true).parse(lines);
    ASSERT_TRUE(result);
    ASSERT_EQ(result->lines[0].left(5), QStringLiteral("CIUTO"));
    EXPECT_EQ(printedLines(*result, lines)[0].left(5), QStringLiteral("C1UTO"));
    auto doubtful = lines;
    doubtful[0].certainties[1] = 0.6F;
    EXPECT_EQ(printedLines(*QKMRZParser(true).parse(doubtful), doubtful)[0].left(5), QStringLiteral("CIUTO"));
}

TEST(MrzPrint, TellsZerosOfSmallPrintOnlyWithDoubtAndPrefersThemInNumbers)
{
    std::vector<MrzLineReading> lines { reading("P<UTOOTTO<<O", 0.99F), reading("AO00000<<4", 0.99F) };
    doubtZeros(lines, 30);
    EXPECT_FLOAT_EQ(lines[1].certainties[1], 0.99F);
    doubtZeros(lines, 9);
    EXPECT_LT(lines[1].certainties[1], 0.9F);
    EXPECT_FLOAT_EQ(lines[1].certainties[0], 0.99F);
    const auto guess = withZerosPreferred(lines);
    EXPECT_EQ(guess[0].text, lines[0].text) << "names";
    EXPECT_EQ(guess[1].text, QStringLiteral("A000000<<4"));
    EXPECT_TRUE(guess[1].alternatives[1].contains(u'O'));
}

} // namespace
