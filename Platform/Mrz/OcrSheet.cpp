#include "Platform/Mrz/OcrSheet.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace kelvara::ocr {

namespace {

/// How black each pixel of a place is when the cell's ink is scaled into it.
void paint(const Layout& layout, const Line& line, const Cell& cell, int mark, cv::Mat place)
{
    const double scale = Sheet::kCapital / line.height;
    const cv::Rect around(cell.ink.x - 1, cell.ink.y - 1, cell.ink.width + 2, cell.ink.height + 2);
    cv::Mat own = cv::Mat::zeros(around.size(), CV_8U);
    const cv::Rect inside = around & cv::Rect(0, 0, layout.cells.cols, layout.cells.rows);
    own(inside - around.tl()).setTo(255, layout.cells(inside) == mark);
    // Averages before it reduces, so that ragged edges become smooth.
    if (scale < 1)
        cv::GaussianBlur(own, own, cv::Size(), 0.45 / scale, 0.45 / scale, cv::BORDER_CONSTANT);
    const double left = (around.x - cell.center.x) * scale + place.cols / 2.0;
    const double top = (around.y - cell.center.y) * scale + place.rows / 2.0;
    const cv::Matx23d map(scale, 0, left + 0.5 * scale - 0.5, 0, scale, top + 0.5 * scale - 0.5);
    cv::Mat drawn;
    cv::warpAffine(own, drawn, map, place.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, 0);
    place.setTo(0, drawn > 127);
}

} // namespace

Sheet layOut(const Layout& layout)
{
    Sheet sheet;
    std::size_t longest = 0;
    for (const Line& line : layout.lines)
        longest = std::max(longest, line.cells.size());
    sheet.image = cv::Mat(2 * Sheet::kMargin + int(layout.lines.size()) * Sheet::kLinePitch,
        2 * Sheet::kMargin + int(longest) * Sheet::kPitch, CV_8U, cv::Scalar(255));
    for (std::size_t l = 0; l < layout.lines.size(); ++l) {
        const Line& line = layout.lines[l];
        for (std::size_t c = 0; c < line.cells.size(); ++c) {
            if (!line.cells[c].ink.empty())
                paint(layout, line, line.cells[c], line.mark(c), sheet.image(Sheet::place(l, c)));
        }
    }
    return sheet;
}

} // namespace kelvara::ocr
