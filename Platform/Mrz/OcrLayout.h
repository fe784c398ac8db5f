#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace kelvara::ocr {

/// Internal: needs OpenCV. One place of a line's pitch grid and the ink in it.
struct Cell
{
    cv::Point2d center; ///< Of the place, in the image's pixels, origin top-left.
    cv::Rect ink; ///< Bounds of the ink; empty when there is none.
    double height = 0; ///< Of the ink across the line, in pixels.
    int pieces = 0; ///< Connected components.
};

/// A line of evenly spaced characters.
struct Line
{
    std::vector<Cell> cells; ///< From left to right, without gaps.
    double pitch = 0; ///< Between neighbouring places, in pixels.
    double height = 0; ///< Of a capital, in pixels.
    int firstMark = 1; ///< What marks the ink of the first cell in `Layout::cells`; the next cell's is one more.

    [[nodiscard]] int mark(std::size_t cell) const { return firstMark + int(cell); }
};

/// Where characters of a fixed pitch stand in an image.
struct Layout
{
    cv::Mat cells; ///< CV_16U, of the image's size: the mark of the cell that the ink belongs to, 0 elsewhere.
    std::vector<Line> lines; ///< From top to bottom.
};

/// Finds the lines of a band of OCR-B capitals, turned by up to 4°: ink is non-zero in `ink` (CV_8U). Components that
/// are small against the glyphs are left out as speckle. No lines when there is nothing like text.
[[nodiscard]] Layout findLayout(const cv::Mat& ink);

} // namespace kelvara::ocr
