#include "Tools/Specimen/Specimen.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvara::specimen {

namespace {

/// Rows or columns of an area in which there is ink.
std::vector<bool> inked(const QImage& image, const QRect& area, bool rows)
{
    std::vector<bool> result(static_cast<std::size_t>(rows ? area.height() : area.width()), false);
    for (int y = 0; y < area.height(); ++y) {
        for (int x = 0; x < area.width(); ++x) {
            if (qGray(image.pixel(area.x() + x, area.y() + y)) < 90)
                result[static_cast<std::size_t>(rows ? y : x)] = true;
        }
    }
    return result;
}

int runs(const std::vector<bool>& marks)
{
    int count = 0;
    for (std::size_t i = 0; i < marks.size(); ++i)
        count += marks[i] && (i == 0 || !marks[i - 1]);
    return count;
}

TEST(Print, IsAnId1CardWithRoundCorners)
{
    ASSERT_EQ(printerProblem(), QString());
    const SpecimenData data = SpecimenData::fromSeed(5);
    for (const QImage& card : { printFront(data), printBack(data) }) {
        ASSERT_EQ(card.size(), QSize(1400, 883)); // 85.60 × 53.98
        for (const QPoint corner : { QPoint(0, 0), QPoint(1399, 0), QPoint(1399, 882), QPoint(0, 882) })
            EXPECT_EQ(qAlpha(card.pixel(corner)), 0);
        // On the diagonal of the corner square the rounding of 3.18 mm = 52 px begins 15.2 px in.
        EXPECT_EQ(qAlpha(card.pixel(13, 13)), 0);
        EXPECT_EQ(qAlpha(card.pixel(17, 17)), 255);
        EXPECT_EQ(qAlpha(card.pixel(700, 1)), 255);
    }
    EXPECT_NE(printFront(data, 300), printFront(SpecimenData::fromSeed(6), 300));
    EXPECT_EQ(printFront(data, 1).size(), QSize(1, 1));
}

TEST(Print, BackBearsThreeLinesOfThirtyCharactersAcrossTheCard)
{
    const QImage back = printBack(SpecimenData::fromSeed(7), 1712); // 20 px a millimetre
    const QRect zone(20, 660, 1672, 400);
    const std::vector<bool> rows = inked(back, zone, true);
    EXPECT_EQ(runs(rows), 3);
    const std::vector<bool> columns = inked(back, zone, false);
    const auto first = std::find(columns.begin(), columns.end(), true) - columns.begin();
    const auto last = columns.rend() - std::find(columns.rbegin(), columns.rend(), true);
    EXPECT_NEAR(static_cast<double>(last - first) / 1712, 0.88, 0.015);
    EXPECT_GE(runs(columns), 28); // characters do not touch
}

TEST(Print, FrontShowsTheFaceInThePortrait)
{
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        const SpecimenData data = SpecimenData::fromSeed(seed);
        const QRectF face = printedFace(data);
        EXPECT_TRUE(portraitRect().contains(face));
        EXPECT_NEAR(face.width(), 0.17, 0.01);
        const QImage front = printFront(data, 800);
        // Skin where cheeks and nose are: redder than blue, neither black nor white.
        for (const double x : { 0.3, 0.5, 0.7 }) {
            const QRgb skin = front.pixel(qRound((face.x() + x * face.width()) * front.width()),
                qRound((face.y() + 0.58 * face.height()) * front.height()));
            EXPECT_GT(qRed(skin), qBlue(skin) + 15);
            EXPECT_GT(qGray(skin), 50);
            EXPECT_LT(qGray(skin), 245);
        }
    }
}

} // namespace

} // namespace kelvara::specimen
