#pragma once

#include "Platform/Vision/TextRows.h"

namespace kelvara {

/// Internal: needs OpenCV. How far apart the characters of rows stand.
struct TextPitch
{
    double pitch = 0; ///< In pixels.
    double rhythm = 0; ///< How much the rows rise and fall with it, 0 to 1. Proportional print has little.
};

/// The pitch that 28 to 60 characters in the rows' length would have and that fits the strokes best.
[[nodiscard]] TextPitch pitchOf(const cv::Mat& strokes, const std::vector<TextRow>& rows);

/// How high capitals are, from 0.6 to 1.2 pitches.
[[nodiscard]] double capitalOf(const cv::Mat& strokes, const std::vector<TextRow>& rows, double pitch);

} // namespace kelvara
