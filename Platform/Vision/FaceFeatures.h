#pragma once

#include <opencv2/core/mat.hpp>

#include <vector>

namespace kelvara {

/// Histograms of oriented gradients of a grey image, as in Felzenszwalb et al., "Object Detection with Discriminatively
/// Trained Part Based Models" (2010): 18 directions, 9 orientations and 4 texture sums of each 8 × 8 cell, normalised
/// by the four blocks around it. Internal to the face detector. A value with reusable memory; one thread at a time.
class FaceFeatures
{
public:
    static constexpr int cellSize = 8; ///< pixels
    static constexpr int channels = 31;
    static constexpr int stride = 32; ///< floats from cell to cell; the last one is zero.

    /// Replaces the contents by those of `gray` (8 bits), with `margin` cells of zeros on every side. The outermost
    /// ring of the image's own cells has no neighbours to be normalised by and yields none. A smaller image than
    /// three cells has none at all.
    void compute(const cv::Mat& gray, int margin);

    [[nodiscard]] int rows() const { return m_rows; }
    [[nodiscard]] int columns() const { return m_columns; }

    /// The cell's channels; those of the following columns come right behind.
    [[nodiscard]] const float* at(int row, int column) const
    {
        return m_features.data() + (static_cast<std::size_t>(row) * m_columns + column) * stride;
    }

    /// The pixel, in x and in y, where the cell of this column or row begins.
    [[nodiscard]] int pixelOf(int cell) const { return (cell - m_margin + 1) * cellSize; }

private:
    void accumulate(const cv::Mat& gray, int cellRows, int cellColumns);
    void normalize(int cellRows, int cellColumns);

    int m_rows = 0;
    int m_columns = 0;
    int m_margin = 0;
    std::vector<float> m_features;
    // Of the cells, with a ring of one cell around: pixels near the border vote into cells that do not exist.
    std::vector<float> m_histograms;
    std::vector<float> m_energies;
    // Of the eight pixel rows between two rows of cell centres.
    std::vector<float> m_magnitudes;
    std::vector<uchar> m_directions;
};

} // namespace kelvara
