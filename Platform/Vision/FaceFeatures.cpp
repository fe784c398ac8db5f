#include "Platform/Vision/FaceFeatures.h"

#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara {

namespace {

constexpr int cell = FaceFeatures::cellSize;
constexpr int half = cell / 2;
constexpr int directions = 18;
constexpr int orientations = 9;
constexpr int histogramStride = 20;
constexpr int lanes = 4;
constexpr int orientationTerms = 20; // where the orientations begin among a cell's terms: vectors are kept apart
constexpr int terms = 32;

using Pixels = cv::v_int16x8;
constexpr int pixels = 8;

/// Length and direction (0…17, steps of 20°, clockwise from the right) of the gradients of eight pixels. Spelled out in
/// vectors, as all loops over pixels here: they are most of the search's time.
void gradients(const uchar* above, const uchar* row, const uchar* below, float* magnitudes, uchar* bins)
{
    const auto load = [](const uchar* from) { return cv::v_reinterpret_as_s16(cv::v_load_expand(from)); };
    const auto constant = [](int value) { return cv::v_setall_s16(static_cast<short>(value)); };
    const Pixels zero = cv::v_setzero_s16();
    const Pixels dx = load(row + 1) - load(row - 1);
    const Pixels dy = load(below) - load(above);

    cv::v_int32x4 low;
    cv::v_int32x4 high;
    cv::v_int32x4 lowY;
    cv::v_int32x4 highY;
    cv::v_mul_expand(dx, dx, low, high);
    cv::v_mul_expand(dy, dy, lowY, highY);
    cv::v_store(magnitudes, cv::v_sqrt(cv::v_cvt_f32(low + lowY)));
    cv::v_store(magnitudes + pixels / 2, cv::v_sqrt(cv::v_cvt_f32(high + highY)));

    // The sector within the first quadrant by its bounding slopes, the tangents of 10°, 30°, 50° and 70° (a true
    // comparison is −1), then the quadrant. A gradient straight up or down lies between two bins and belongs to the
    // lower.
    const Pixels w = cv::v_reinterpret_as_s16(cv::v_abs(dx));
    const Pixels h = cv::v_reinterpret_as_s16(cv::v_abs(dy));
    const auto steeper = [&](int tangentY, int tangentX) { return h * constant(tangentX) >= w * constant(tangentY); };
    const Pixels sector = zero - steeper(3, 17) - steeper(56, 97) - steeper(87, 73) - steeper(11, 4);
    const Pixels upward = dy < zero;
    const Pixels leftward = (dx < zero) | ((dx == zero) & upward);
    const Pixels upper = cv::v_select(leftward, constant(orientations) - sector, sector);
    const Pixels bin = cv::v_select(upward, constant(directions) - upper, upper);
    cv::v_pack_u_store(bins, cv::v_select(bin == constant(directions), zero, bin));
}

/// The same in columns 1…width − 2 of a row of at least ten.
void gradientsOfRow(const uchar* above, const uchar* row, const uchar* below, int width, float* magnitudes, uchar* bins)
{
    const int last = width - 1 - pixels;
    for (int x = 1; x < last; x += pixels)
        gradients(above + x, row + x, below + x, magnitudes + x, bins + x);
    gradients(above + last, row + last, below + last, magnitudes + last, bins + last);
}

/// Shares of the upper left, upper right, lower left and lower right cell in a pixel's vote, by the pixel's place
/// between the four cells' centres.
using Shares = std::array<std::array<std::array<float, 4>, cell>, cell>;

constexpr Shares makeShares()
{
    Shares shares {};
    for (int y = 0; y < cell; ++y) {
        for (int x = 0; x < cell; ++x) {
            const float right = (static_cast<float>(x) + 0.5F) / cell;
            const float lower = (static_cast<float>(y) + 0.5F) / cell;
            shares[y][x] = { (1 - right) * (1 - lower), right * (1 - lower), (1 - right) * lower, right * lower };
        }
    }
    return shares;
}

alignas(16) constexpr Shares shares = makeShares();

} // namespace

void FaceFeatures::compute(const cv::Mat& gray, int margin)
{
    const int cellRows = (gray.rows + half) / cell;
    const int cellColumns = (gray.cols + half) / cell;
    m_margin = margin;
    if (cellRows < 3 || cellColumns < 3) {
        m_rows = m_columns = 0;
        return;
    }
    m_rows = cellRows - 2 + 2 * margin;
    m_columns = cellColumns - 2 + 2 * margin;
    m_features.assign(static_cast<std::size_t>(m_rows) * m_columns * stride, 0.0F);
    accumulate(gray, cellRows, cellColumns);
    normalize(cellRows, cellColumns);
}

void FaceFeatures::accumulate(const cv::Mat& gray, int cellRows, int cellColumns)
{
    // The last row and column have no gradient, nor has what lies beyond the last whole cell.
    const int endRow = std::min(cellRows * cell, gray.rows) - 1;
    const int endColumn = std::min(cellColumns * cell, gray.cols) - 1;
    const int bufferStride = gray.cols + 2 * cell + half;
    const int ringColumns = cellColumns + 2;
    m_magnitudes.assign(static_cast<std::size_t>(cell) * bufferStride, 0.0F);
    m_directions.assign(static_cast<std::size_t>(cell) * bufferStride, 0);
    m_histograms.assign(static_cast<std::size_t>(cellRows + 2) * ringColumns * histogramStride, 0.0F);

    // Every pixel votes into the four cells whose centres surround it. The 64 pixels between the same four centres are
    // taken together, and the four votes of one pixel are one vector. Two sets of sums, for even and odd columns:
    // neighbouring pixels often have the same direction and would wait for each other's sum.
    alignas(16) std::array<std::array<std::array<float, 4>, directions>, 2> sums;
    for (int blockRow = 0; blockRow <= cellRows; ++blockRow) {
        for (int line = 0; line < cell; ++line) {
            const int y = blockRow * cell - half + line;
            float* buffer = m_magnitudes.data() + static_cast<std::size_t>(line) * bufferStride;
            float* magnitudes = buffer + half;
            uchar* bins = m_directions.data() + static_cast<std::size_t>(line) * bufferStride + half;
            if (y < 1 || y >= endRow) {
                std::fill(buffer, buffer + bufferStride, 0.0F);
                continue;
            }
            gradientsOfRow(gray.ptr(y - 1), gray.ptr(y), gray.ptr(y + 1), gray.cols, magnitudes, bins);
            std::fill(magnitudes + endColumn, buffer + bufferStride, 0.0F);
        }
        for (int blockColumn = 0; blockColumn <= cellColumns; ++blockColumn) {
            sums = {};
            for (int line = 0; line < cell; ++line) {
                const std::size_t first = static_cast<std::size_t>(line) * bufferStride + blockColumn * cell;
                const float* magnitudes = m_magnitudes.data() + first;
                const uchar* bins = m_directions.data() + first;
                for (int x = 0; x < cell; ++x) {
                    float* sum = sums[x & 1][bins[x]].data();
                    cv::v_store_aligned(sum,
                        cv::v_fma(cv::v_setall_f32(magnitudes[x]), cv::v_load(shares[line][x].data()),
                            cv::v_load_aligned(sum)));
                }
            }
            float* upper = m_histograms.data()
                + (static_cast<std::size_t>(blockRow) * ringColumns + blockColumn) * histogramStride;
            float* lower = upper + static_cast<std::size_t>(ringColumns) * histogramStride;
            for (int bin = 0; bin < directions; ++bin) {
                upper[bin] += sums[0][bin][0] + sums[1][bin][0];
                upper[bin + histogramStride] += sums[0][bin][1] + sums[1][bin][1];
                lower[bin] += sums[0][bin][2] + sums[1][bin][2];
                lower[bin + histogramStride] += sums[0][bin][3] + sums[1][bin][3];
            }
        }
    }
}

void FaceFeatures::normalize(int cellRows, int cellColumns)
{
    const auto histogram = [&](int row, int column) {
        return m_histograms.data()
            + (static_cast<std::size_t>(row + 1) * (cellColumns + 2) + column + 1) * histogramStride;
    };
    m_energies.resize(static_cast<std::size_t>(cellRows) * cellColumns);
    for (int row = 0; row < cellRows; ++row) {
        for (int column = 0; column < cellColumns; ++column) {
            const float* votes = histogram(row, column);
            float energy = 0;
            for (int bin = 0; bin < orientations; ++bin) {
                const float both = votes[bin] + votes[bin + orientations];
                energy += both * both;
            }
            m_energies[static_cast<std::size_t>(row) * cellColumns + column] = energy;
        }
    }

    constexpr float clip = 0.2F;
    constexpr float tiny = 1e-4F;
    constexpr float textureGain = 2 * 0.2357F;
    for (int row = 1; row < cellRows - 1; ++row) {
        for (int column = 1; column < cellColumns - 1; ++column) {
            const auto blockEnergy = [&](int down, int right) {
                const float* corner
                    = m_energies.data() + static_cast<std::size_t>(row - 1 + down) * cellColumns + column - 1 + right;
                return corner[0] + corner[1] + corner[cellColumns] + corner[cellColumns + 1];
            };
            // The model's order of the blocks around a cell.
            const std::array<float, 4> energies
                = { blockEnergy(1, 1), blockEnergy(0, 1), blockEnergy(1, 0), blockEnergy(0, 0) };
            float* features = m_features.data()
                + (static_cast<std::size_t>(row - 1 + m_margin) * m_columns + column - 1 + m_margin) * stride;

            // Directions and two zeros, then orientations and three zeros.
            alignas(16) std::array<float, terms> values {};
            const float* votes = histogram(row, column);
            for (int bin = 0; bin < directions; ++bin)
                values[bin] = votes[bin];
            for (int bin = 0; bin < orientations; ++bin)
                values[orientationTerms + bin] = votes[bin] + votes[bin + orientations];
            std::array<cv::v_float32x4, terms / lanes> sums;
            sums.fill(cv::v_setzero_f32());
            for (std::size_t block = 0; block < energies.size(); ++block) {
                const float limit = clip * std::sqrt(energies[block] + tiny);
                const cv::v_float32x4 limits = cv::v_setall_f32(limit);
                const cv::v_float32x4 gains = cv::v_setall_f32(clip / 2 / limit);
                cv::v_float32x4 texture = cv::v_setzero_f32();
                for (int i = 0; i < terms / lanes; ++i) {
                    const cv::v_float32x4 clipped
                        = cv::v_min(cv::v_load_aligned(values.data() + i * lanes), limits) * gains;
                    sums[i] += clipped;
                    if (i < orientationTerms / lanes)
                        texture += clipped;
                }
                features[directions + orientations + block] = cv::v_reduce_sum(texture) * textureGain;
            }
            for (int i = 0; i < terms / lanes; ++i)
                cv::v_store_aligned(values.data() + i * lanes, sums[i]);
            std::copy_n(values.begin(), directions, features);
            std::copy_n(values.begin() + orientationTerms, orientations, features + directions);
        }
    }
}

} // namespace kelvara
