#include "Platform/Mrz/OcrLayout.h"
#include "Platform/Mrz/OcrBitmap.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"

#include <opencv2/imgproc.hpp>

#include <gtest/gtest.h>
#include <random>

namespace kelvara {
namespace {

using ocrb::BandFormat;

cv::Mat band(BandFormat format, double capital, double degrees)
{
    const auto painted = ocrb::paintBand(ocrb::bandText(format, 5'000'100),
        { .seed = 5'000'100, .capital = capital, .noise = 0, .degrees = degrees, .stretch = 0.97 });
    return painted ? ocr::inkOf(*painted) : cv::Mat();
}

void speckle(cv::Mat& ink, int count, int side)
{
    std::mt19937 random(3);
    for (int i = 0; i < count; ++i) {
        const cv::Point at(int(random() % unsigned(ink.cols)), int(random() % unsigned(ink.rows)));
        ink(cv::Rect(at, cv::Size(side, side)) & cv::Rect({}, ink.size())).setTo(255);
    }
}

TEST(OcrLayout, FindsEveryPlaceOfTurnedLines)
{
    for (const auto format : { BandFormat::TD1, BandFormat::TD2, BandFormat::TD3 }) {
        const std::size_t lines = format == BandFormat::TD1 ? 3 : 2;
        const std::size_t length = format == BandFormat::TD1 ? 30 : format == BandFormat::TD2 ? 36 : 44;
        for (const double degrees : { -3.0, -1.3, 0.0, 0.4, 3.0 }) {
            SCOPED_TRACE(testing::Message() << length << " characters at " << degrees);
            const double capital = 36;
            const ocr::Layout layout = ocr::findLayout(band(format, capital, degrees));
            ASSERT_EQ(layout.lines.size(), lines);
            for (const ocr::Line& line : layout.lines) {
                ASSERT_EQ(line.cells.size(), length);
                EXPECT_NEAR(line.height, capital, 0.13 * capital);
                EXPECT_NEAR(line.pitch, 0.97 * capital, 0.03 * capital);
                for (const ocr::Cell& cell : line.cells)
                    EXPECT_FALSE(cell.ink.empty());
            }
        }
    }
}

TEST(OcrLayout, LeavesSpeckleOutAndFillsLostPlaces)
{
    cv::Mat ink = band(BandFormat::TD1, 40, 0.8);
    const ocr::Layout clean = ocr::findLayout(ink);
    ASSERT_EQ(clean.lines.size(), 3U);
    const cv::Rect last = clean.lines[2].cells[29].ink;
    const cv::Rect middle = clean.lines[1].cells[12].ink;
    ink(last).setTo(0);
    ink(middle).setTo(0);
    speckle(ink, 400, 3);
    const ocr::Layout layout = ocr::findLayout(ink);
    ASSERT_EQ(layout.lines.size(), 3U);
    for (const ocr::Line& line : layout.lines)
        EXPECT_EQ(line.cells.size(), 30U);
    EXPECT_TRUE(layout.lines[2].cells[29].ink.empty());
    EXPECT_TRUE(layout.lines[1].cells[12].ink.empty());
    EXPECT_EQ(layout.lines[0].cells[0].ink.height, clean.lines[0].cells[0].ink.height);
}

TEST(OcrLayout, CutsGlyphsThatTouch)
{
    cv::Mat ink = band(BandFormat::TD1, 40, 0);
    const ocr::Layout clean = ocr::findLayout(ink);
    ASSERT_EQ(clean.lines.size(), 3U);
    const auto& cells = clean.lines[0].cells;
    for (const std::size_t first : { 2U, 3U, 6U }) // bridges to the next glyph
        cv::line(ink, cells[first].center, cells[first + 1].center, 255, 3);
    const ocr::Layout layout = ocr::findLayout(ink);
    ASSERT_EQ(layout.lines.size(), 3U);
    ASSERT_EQ(layout.lines[0].cells.size(), 30U);
    for (std::size_t i = 2; i < 8; ++i)
        EXPECT_LT(layout.lines[0].cells[i].ink.width, 40);
}

TEST(OcrLayout, FindsNothingWhereThereIsNoText)
{
    EXPECT_TRUE(ocr::findLayout(cv::Mat::zeros(100, 600, CV_8U)).lines.empty());
    EXPECT_TRUE(ocr::findLayout(cv::Mat(100, 600, CV_8U, cv::Scalar(255))).lines.empty());
    EXPECT_TRUE(ocr::findLayout(cv::Mat::zeros(1, 1, CV_8U)).lines.empty());
    cv::Mat dirt = cv::Mat::zeros(200, 900, CV_8U);
    speckle(dirt, 500, 2);
    EXPECT_TRUE(ocr::findLayout(dirt).lines.empty());
    cv::Mat bars = cv::Mat::zeros(200, 900, CV_8U);
    for (int x = 0; x < 900; x += 9)
        bars(cv::Rect(x, 0, 4, 200)).setTo(255);
    EXPECT_TRUE(ocr::findLayout(bars).lines.empty());
}

} // namespace
} // namespace kelvara
