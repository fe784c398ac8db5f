#include "Platform/Vision/FaceFeatures.h"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <array>
#include <cmath>
#include <numbers>

using namespace kelvara;

namespace {

constexpr int cell = FaceFeatures::cellSize;
using Histogram = std::array<double, 18>;

/// The published definition, step by step and in double precision: one cell's 31 numbers.
class Reference
{
public:
    explicit Reference(const cv::Mat& gray)
        : m_rows((gray.rows + cell / 2) / cell), m_columns((gray.cols + cell / 2) / cell),
          m_cells(static_cast<std::size_t>(m_rows * m_columns))
    {
        for (int y = 1; y < std::min(gray.rows, m_rows * cell) - 1; ++y) {
            for (int x = 1; x < std::min(gray.cols, m_columns * cell) - 1; ++x)
                vote(gray, x, y);
        }
    }

    [[nodiscard]] std::array<double, 31> features(int row, int column) const
    {
        const Histogram& votes = at(row, column);
        std::array<double, 31> result {};
        const std::array<std::array<int, 2>, 4> blocks = { { { 0, 0 }, { -1, 0 }, { 0, -1 }, { -1, -1 } } };
        for (int block = 0; block < 4; ++block) {
            double energy = 1e-4;
            for (int i = 0; i < 4; ++i)
                energy += energyOf(row + blocks[block][0] + i / 2, column + blocks[block][1] + i % 2);
            const auto clipped = [&](double value) { return std::min(value / std::sqrt(energy), 0.2) / 2; };
            for (int bin = 0; bin < 18; ++bin) {
                result[bin] += clipped(votes[bin]);
                result[27 + block] += clipped(votes[bin]) * 2 * 0.2357;
            }
            for (int bin = 0; bin < 9; ++bin)
                result[18 + bin] += clipped(votes[bin] + votes[bin + 9]);
        }
        return result;
    }

private:
    const Histogram& at(int row, int column) const
    {
        return m_cells[static_cast<std::size_t>(row * m_columns + column)];
    }

    double energyOf(int row, int column) const
    {
        double energy = 0;
        for (int bin = 0; bin < 9; ++bin)
            energy += std::pow(at(row, column)[bin] + at(row, column)[bin + 9], 2);
        return energy;
    }

    void vote(const cv::Mat& gray, int x, int y)
    {
        const double dx = gray.at<uchar>(y, x + 1) - gray.at<uchar>(y, x - 1);
        const double dy = gray.at<uchar>(y + 1, x) - gray.at<uchar>(y - 1, x);
        if (dx == 0 && dy == 0)
            return;
        // Straight up or down lies between two bins and counts for the lower.
        const double steps = std::atan2(dy, dx) * 9 / std::numbers::pi - (dx == 0 ? 1e-6 : 0);
        const int bin = (static_cast<int>(std::floor(steps + 0.5)) + 18) % 18;
        const double cx = (x + 0.5) / cell - 0.5;
        const double cy = (y + 0.5) / cell - 0.5;
        for (int i = 0; i < 4; ++i) {
            const int row = static_cast<int>(std::floor(cy)) + i / 2;
            const int column = static_cast<int>(std::floor(cx)) + i % 2;
            if (row < 0 || column < 0 || row >= m_rows || column >= m_columns)
                continue;
            const double weight = (1 - std::abs(cy - row)) * (1 - std::abs(cx - column));
            m_cells[static_cast<std::size_t>(row * m_columns + column)][bin] += weight * std::hypot(dx, dy);
        }
    }

    int m_rows;
    int m_columns;
    std::vector<Histogram> m_cells;
};

cv::Mat texture(cv::Size size)
{
    cv::RNG random(42);
    cv::Mat gray(size, CV_8U);
    random.fill(gray, cv::RNG::UNIFORM, 0, 256);
    cv::GaussianBlur(gray, gray, {}, 1.5);
    cv::normalize(gray, gray, 0, 255, cv::NORM_MINMAX);
    cv::rectangle(
        gray, { 9, 11 }, { 30, 25 }, cv::Scalar(255), cv::FILLED); // edges straight along the axes, at full height
    return gray;
}

TEST(FaceFeatures, AreHistogramsOfOrientedGradients)
{
    constexpr int margin = 2;
    FaceFeatures features;
    for (const cv::Size size : { cv::Size(200, 160), cv::Size(83, 45), cv::Size(44, 61), cv::Size(20, 20) }) {
        const cv::Mat gray = texture(size);
        const Reference reference(gray);
        features.compute(gray, margin);
        ASSERT_EQ(features.rows(), (size.height + 4) / cell - 2 + 2 * margin);
        ASSERT_EQ(features.columns(), (size.width + 4) / cell - 2 + 2 * margin);
        double difference = 0;
        double largest = 0;
        for (int row = 0; row < features.rows(); ++row) {
            for (int column = 0; column < features.columns(); ++column) {
                const bool inside = row >= margin && column >= margin && row < features.rows() - margin
                    && column < features.columns() - margin;
                const auto expected
                    = inside ? reference.features(row - margin + 1, column - margin + 1) : std::array<double, 31> {};
                for (int channel = 0; channel < FaceFeatures::channels; ++channel) {
                    const double off = std::abs(features.at(row, column)[channel] - expected[channel]);
                    EXPECT_TRUE(inside || off == 0);
                    difference += off;
                    largest = std::max(largest, off);
                }
            }
        }
        // The sectors' slopes are fractions of small integers: a few gradients change bins.
        EXPECT_LT(difference / (features.rows() * features.columns() * FaceFeatures::channels), 5e-4);
        EXPECT_LT(largest, 0.05);
    }
}

TEST(FaceFeatures, OfTooSmallAnImageAreNone)
{
    FaceFeatures features;
    features.compute(texture({ 100, 100 }), 1);
    for (const cv::Size size : { cv::Size(0, 0), cv::Size(1, 1), cv::Size(19, 100), cv::Size(100, 19) }) {
        features.compute(cv::Mat(size, CV_8U, cv::Scalar(7)), 1);
        EXPECT_EQ(features.rows(), 0);
        EXPECT_EQ(features.columns(), 0);
    }
}

} // namespace
