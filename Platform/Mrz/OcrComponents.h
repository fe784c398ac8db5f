#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace kelvara::ocr {

/// Internal. Connected ink.
struct Component
{
    int label;
    cv::Rect box;
    int area;

    [[nodiscard]] double x() const { return box.x + box.width / 2.0; }
    [[nodiscard]] double y() const { return box.y + box.height / 2.0; }
};

/// Internal.
struct Components
{
    cv::Mat labels; ///< CV_32S.
    std::vector<Component> all;
};

/// All of an image of ink (CV_8U).
[[nodiscard]] Components componentsOf(const cv::Mat& ink);

} // namespace kelvara::ocr
