#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace kelvara {

/// Internal: needs OpenCV. A long line of dense print: its middle is y = level + slope · x from `left` to `right`.
struct TextRow
{
    double left = 0;
    double right = 0;
    double level = 0;
    double slope = 0;
    double thickness = 0; ///< About the glyphs' height.

    [[nodiscard]] double y(double x) const { return level + slope * x; }
    [[nodiscard]] double length() const { return right - left; }
};

/// What is dark and narrow in a picture, such as strokes of print (CV_8U, brighter for darker strokes).
[[nodiscard]] cv::Mat strokesOf(const cv::Mat& brightness);

/// The long rows in an image of strokes, from top to bottom; capitals of about 6 to 25 pixels. What lies in one line
/// with a gap between is told both as one row and as several.
[[nodiscard]] std::vector<TextRow> findTextRows(const cv::Mat& strokes);

} // namespace kelvara
