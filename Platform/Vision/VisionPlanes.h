#pragma once

#include "Platform/Vision/VisionImage.h"

#include <opencv2/core/mat.hpp>

#include <array>
#include <mutex>

namespace kelvara {

/// The planes of one analysed bitmap: a colour and a luma pyramid of four levels (full, 1/2, 1/4, 1/8). Internal:
/// for detectors only.
///
/// Every level halves the one above it by means of 2 × 2 pixels and drops an odd last row or column. So the centre of
/// a pixel (x, y) of level n lies at (x + ½)·2ⁿ − ½ of the full image, exactly. Matrices are read-only and live as
/// long as the image; any thread.
struct VisionImage::Planes
{
    static constexpr int levels = 4;

    explicit Planes(QImage upright);
    Planes(const Planes&) = delete;
    Planes& operator=(const Planes&) = delete;

    /// 8-bit B, G, R, A. Level 0 is the bitmap's own memory.
    [[nodiscard]] const cv::Mat& bgra(int level);
    /// 8-bit luma (0.299 R + 0.587 G + 0.114 B) of the same level.
    [[nodiscard]] const cv::Mat& luma(int level);

    const QImage bitmap; ///< As given.

private:
    struct Plane
    {
        std::once_flag once;
        cv::Mat pixels;
    };

    QImage m_bytes; ///< The bitmap in B, G, R, A order; shares `bitmap`'s pixels where that is its order already.
    std::array<Plane, levels> m_bgra;
    std::array<Plane, levels> m_luma;
};

} // namespace kelvara
