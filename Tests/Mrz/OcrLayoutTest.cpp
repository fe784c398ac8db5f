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

/// Leaves of a cell's ink what lies within some pixels of its place's centre.
void fade(cv::Mat& ink, const ocr::Cell& cell)
{
    const cv::Rect around = cell.ink & cv::Rect({}, ink.size());
    cv::Mat rest = cv::Mat::zeros(ink.size(), CV_8U);
    cv::circle(rest, cell.center, 9, 255, cv::FILLED);
    cv::Mat part = ink(around);
    part &= rest(around);
    cv::circle(ink, cell.center, 4, 255, cv::FILLED); // some glyphs are hollow there
}

TEST(OcrLayout, TakesADocumentsShapeWhereOnlyRemnantsAreLeft)
{
    for (const auto format : { BandFormat::TD1, BandFormat::TD2, BandFormat::TD3 }) {
        for (const double degrees : { -1.5, 0.0, 1.5 }) {
            const cv::Mat whole = band(format, 40, degrees);
            const ocr::Layout clean = ocr::findLayout(whole);
            const std::size_t length = clean.lines.front().cells.size();
            // All lines end in remnants, or one line is nothing but remnants.
            for (std::size_t faded = 0; faded <= clean.lines.size(); ++faded) {
                SCOPED_TRACE(testing::Message() << length << " characters at " << degrees << ", line " << faded);
                cv::Mat ink = whole.clone();
                for (std::size_t l = 0; l < clean.lines.size(); ++l) {
                    const auto& cells = clean.lines[l].cells;
                    for (std::size_t c = faded == l ? 0 : cells.size() - 9; c < cells.size(); ++c) {
                        if (faded == l || faded == clean.lines.size())
                            fade(ink, cells[c]);
                    }
                }
                const ocr::Layout layout = ocr::findLayout(ink);
                ASSERT_EQ(layout.lines.size(), clean.lines.size());
                for (std::size_t l = 0; l < layout.lines.size(); ++l) {
                    ASSERT_EQ(layout.lines[l].cells.size(), length);
                    for (std::size_t c = 0; c < length; ++c)
                        EXPECT_LT(cv::norm(layout.lines[l].cells[c].center - clean.lines[l].cells[c].center), 8);
                }
            }
        }
    }
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
