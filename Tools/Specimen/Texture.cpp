#include "Tools/Specimen/Texture.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace kelvara::specimen {

cv::Mat cloudNoise(cv::Size size, double grainX, double grainY, int octaves, Dice& dice)
{
    cv::Mat sum(size, CV_32F, cv::Scalar(0));
    double weight = 0.6;
    for (int octave = 0; octave < octaves; ++octave) {
        const int columns = std::clamp(cvCeil(size.width / grainX) + 3, 4, size.width + 3);
        const int rows = std::clamp(cvCeil(size.height / grainY) + 3, 4, size.height + 3);
        cv::Mat grid(rows, columns, CV_32F);
        for (int y = 0; y < rows; ++y) {
            auto* row = grid.ptr<float>(y);
            for (int x = 0; x < columns; ++x)
                row[x] = static_cast<float>((dice.unit() * 2 - 1) * weight);
        }
        cv::Mat smooth;
        cv::resize(grid, smooth, size, 0, 0, cv::INTER_LINEAR);
        sum += smooth;
        weight *= 0.55;
        grainX = std::max(grainX / 2, 1.0);
        grainY = std::max(grainY / 2, 1.0);
    }
    return sum;
}

void paintSurface(cv::Mat& picture, const cv::Vec3d& colour, const cv::Mat& level, const cv::Vec3d& depth)
{
    const cv::Vec3f base = colour;
    const cv::Vec3f gain = depth;
    for (int y = 0; y < picture.rows; ++y) {
        auto* out = picture.ptr<cv::Vec4b>(y);
        const auto* in = level.ptr<float>(y);
        for (int x = 0; x < picture.cols; ++x) {
            for (int c = 0; c < 3; ++c)
                out[x][c] = static_cast<uchar>(std::clamp(base[c] + gain[c] * in[x], 0.0F, 255.0F));
            out[x][3] = 255;
        }
    }
}

} // namespace kelvara::specimen
