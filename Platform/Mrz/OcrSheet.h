#pragma once

#include "Platform/Mrz/OcrLayout.h"

namespace kelvara::ocr {

/// Internal. A layout's glyphs laid out anew: cleaned, straight, of one size and far enough apart that none can be
/// taken together with its neighbour.
struct Sheet
{
    static constexpr int kCapital = 40; ///< Height of a capital in pixels.
    static constexpr int kPitch = 56;
    static constexpr int kLinePitch = 88;
    static constexpr int kMargin = 32;

    cv::Mat image; ///< CV_8U: black (0) on white (255).

    /// The place of a cell in the image.
    [[nodiscard]] static cv::Rect place(std::size_t line, std::size_t cell)
    {
        return { kMargin + int(cell) * kPitch, kMargin + int(line) * kLinePitch, kPitch, kLinePitch };
    }
};

[[nodiscard]] Sheet layOut(const Layout& layout);

} // namespace kelvara::ocr
