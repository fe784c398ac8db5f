#include "Tools/Specimen/Sensor.h"

#include "Tools/Specimen/Dice.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace kelvara::specimen {

namespace {

/// Gain is computed on a coarse grid of cells this many pixels wide, and interpolated between.
constexpr int cell = 16;
/// Gains and levels are multiplied as 16-bit numbers whose upper half is kept.
constexpr double gainOne = 512;

struct Light
{
    cv::Vec2d slope;
    double fallOff;
    cv::Vec3d colour;
    double shadow;
    cv::Vec2d shadowNormal;
    double shadowOffset;
    double shadowSoftness;
};

Light lightOf(const SceneOptions& options)
{
    Dice dice(options.seed, 0x1197);
    Light light {};
    light.slope = { dice.real(-0.12, 0.12), dice.real(-0.12, 0.12) };
    light.fallOff = dice.real(0.05, 0.16);
    const double warm = dice.real(-0.06, 0.08);
    light.colour = { 1 - warm, 1.0, 1 + warm * 0.7 };
    light.shadow = 0.62 * std::clamp(options.shadow, 0.0, 1.0);
    const double angle = dice.real(0, 2 * CV_PI);
    light.shadowNormal = { std::cos(angle), std::sin(angle) };
    light.shadowOffset = dice.real(-0.45, 0.25);
    light.shadowSoftness = dice.real(0.02, 0.22);
    return light;
}

/// Gain at a point of the picture, both coordinates −1 … 1 along the longer side.
double gainAt(const Light& light, double x, double y)
{
    const double across = light.shadowNormal[0] * x + light.shadowNormal[1] * y - light.shadowOffset;
    const double t = std::clamp(across / light.shadowSoftness * 0.5 + 0.5, 0.0, 1.0);
    const double shade = 1 - light.shadow * (1 - t * t * (3 - 2 * t));
    return (1 + light.slope[0] * x + light.slope[1] * y) * (1 - light.fallOff * (x * x + y * y)) * shade;
}

/// A square of normal noise of sigma 24 with the soft grain that cameras' own smoothing leaves; alpha is 0.
constexpr int tileSize = 512;
constexpr double tileSigma = 24;

cv::Mat makeNoiseTile()
{
    Dice dice(1, 0x9015e);
    cv::Mat raw(tileSize, tileSize, CV_32FC4);
    for (int y = 0; y < tileSize; ++y) {
        auto* row = raw.ptr<cv::Vec4f>(y);
        for (int x = 0; x < tileSize; ++x) {
            const double luma = dice.normal(1);
            for (int c = 0; c < 3; ++c)
                row[x][c] = static_cast<float>(0.85 * luma + 0.53 * dice.normal(1));
            row[x][3] = 0;
        }
    }
    cv::Mat soft;
    cv::GaussianBlur(raw, soft, { 3, 3 }, 0.55, 0.55, cv::BORDER_REFLECT);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(soft, mean, deviation);
    cv::Mat tile;
    soft.convertTo(tile, CV_8SC4, tileSigma / deviation[1]);
    return tile;
}

/// Another patch of noise for every pose, so that a film's grain moves.
std::uint32_t grainSeed(const SceneOptions& options)
{
    std::uint32_t hash = Dice::mixed(options.seed);
    for (const double value : { options.fill, options.rollDegrees, options.pitchDegrees, options.yawDegrees,
             options.shift.x(), options.shift.y(), options.exposure }) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        hash = Dice::mixed(hash ^ static_cast<std::uint32_t>(bits) ^ static_cast<std::uint32_t>(bits >> 32));
    }
    return hash;
}

void blur(cv::Mat& picture, const SceneOptions& options)
{
    if (options.focusBlur > 0.15)
        cv::GaussianBlur(picture, picture, {}, std::min(options.focusBlur, 40.0), 0, cv::BORDER_REPLICATE);
    if (options.motionBlur > 0.5) {
        Dice dice(options.seed, 0xb1a2);
        const double angle = dice.real(0, CV_PI);
        const double length = std::min(options.motionBlur, 60.0);
        const int reach = cvCeil(length / 2) + 1;
        cv::Mat kernel(2 * reach + 1, 2 * reach + 1, CV_32F, cv::Scalar(0));
        // A line of points, each shared by its four neighbours; the filter skips the kernel's zeros.
        const int points = 2 * cvCeil(length) + 1;
        for (int i = 0; i < points; ++i) {
            const double along = (static_cast<double>(i) / (points - 1) - 0.5) * length;
            const double x = reach + along * std::cos(angle);
            const double y = reach + along * std::sin(angle);
            const int left = cvFloor(x);
            const int top = cvFloor(y);
            const auto u = static_cast<float>(x - left);
            const auto v = static_cast<float>(y - top);
            kernel.at<float>(top, left) += (1 - u) * (1 - v);
            kernel.at<float>(top, left + 1) += u * (1 - v);
            kernel.at<float>(top + 1, left) += (1 - u) * v;
            kernel.at<float>(top + 1, left + 1) += u * v;
        }
        kernel /= points;
        cv::filter2D(picture, picture, -1, kernel, { -1, -1 }, 0, cv::BORDER_REPLICATE);
    }
}

/// One row of gains for four interleaved channels, from the two coarse rows around it.
void expandGains(const cv::Mat& coarse, double row, std::vector<std::uint16_t>& gains)
{
    const int top = static_cast<int>(row);
    const auto part = static_cast<float>(row - top);
    const auto* upper = coarse.ptr<cv::Vec4f>(top);
    const auto* lower = coarse.ptr<cv::Vec4f>(top + 1);
    const std::size_t count = gains.size();
    for (std::size_t block = 0; block * cell * 4 < count; ++block) {
        const cv::Vec4f left = upper[block] + part * (lower[block] - upper[block]);
        const cv::Vec4f right = upper[block + 1] + part * (lower[block + 1] - upper[block + 1]);
        const cv::Vec4f step = (right - left) * (1.0F / cell);
        const std::size_t end = std::min(count, (block + 1) * cell * 4);
        for (std::size_t i = block * cell * 4, x = 0; i < end; i += 4, ++x) {
            for (std::size_t c = 0; c < 4; ++c)
                gains[i + c] = static_cast<std::uint16_t>(left[static_cast<int>(c)] + step[static_cast<int>(c)] * x);
        }
    }
}

void developRow(uchar* pixels, const std::uint16_t* gains, const std::int8_t* noise, std::int16_t strength, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto level = static_cast<std::uint16_t>(pixels[i] << 7);
        const auto lit = static_cast<std::int16_t>((static_cast<std::uint32_t>(level) * gains[i]) >> 16);
        const auto grain = static_cast<std::int16_t>(noise[i] * 256);
        const auto added = static_cast<std::int16_t>((static_cast<std::int32_t>(grain) * strength) >> 16);
        const int sum = lit + added + 1;
        pixels[i] = static_cast<uchar>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }
}

} // namespace

void darken(cv::Mat& picture, const cv::Mat& shade)
{
    for (int y = 0; y < picture.rows; ++y) {
        auto* out = picture.ptr<uchar>(y);
        const auto* s = shade.ptr<uchar>(y);
        for (int x = 0; x < picture.cols; ++x) {
            const int keep = 256 - s[x];
            for (int c = 0; c < 3; ++c)
                out[4 * x + c] = static_cast<uchar>((out[4 * x + c] * keep) >> 8);
        }
    }
}

void addLight(cv::Mat& layer, const cv::Mat& light)
{
    for (int y = 0; y < layer.rows; ++y) {
        auto* out = layer.ptr<uchar>(y);
        const auto* l = light.ptr<uchar>(y);
        for (int x = 0; x < layer.cols; ++x) {
            const int alpha = out[4 * x + 3];
            for (int c = 0; c < 3; ++c)
                out[4 * x + c] = static_cast<uchar>(std::min(alpha, out[4 * x + c] + l[x]));
        }
    }
}

void expose(cv::Mat& picture, const SceneOptions& options)
{
    blur(picture, options);
    const Light light = lightOf(options);
    const double exposure = std::exp2(std::clamp(options.exposure, -4.0, 3.5));
    cv::Mat coarse(picture.rows / cell + 2, picture.cols / cell + 2, CV_32FC4);
    const double half = std::max(picture.cols, picture.rows) / 2.0;
    for (int y = 0; y < coarse.rows; ++y) {
        for (int x = 0; x < coarse.cols; ++x) {
            const double gain
                = gainAt(light, (x * cell - picture.cols / 2.0) / half, (y * cell - picture.rows / 2.0) / half);
            cv::Vec4f& out = coarse.at<cv::Vec4f>(y, x);
            for (int c = 0; c < 3; ++c)
                out[c] = static_cast<float>(std::clamp(gain * light.colour[c] * exposure, 0.0, 16.0) * gainOne);
            out[3] = static_cast<float>(gainOne);
        }
    }
    static const cv::Mat tile = makeNoiseTile();
    Dice dice(grainSeed(options), 0x9a1);
    const auto strength
        = static_cast<std::int16_t>(std::lround(256 * std::clamp(options.noise, 0.0, 100.0) / tileSigma));
    std::vector<std::uint16_t> gains(static_cast<std::size_t>(picture.cols) * 4);
    int start = 0;
    for (int y = 0; y < picture.rows; ++y) {
        if (y % 4 == 0)
            expandGains(coarse, static_cast<double>(y) / cell, gains);
        // Every stripe of the tile is entered at another place, so that its repetition cannot be seen.
        if (y % 64 == 0)
            start = dice.integer(0, tileSize - 1);
        const auto* noise = reinterpret_cast<const std::int8_t*>(tile.ptr((y + start) % tileSize));
        uchar* row = picture.ptr<uchar>(y);
        for (int x = 0, from = start; x < picture.cols;) {
            const int run = std::min(picture.cols - x, tileSize - from);
            developRow(
                row + 4 * x, gains.data() + 4 * static_cast<std::size_t>(x), noise + 4 * from, strength, 4 * run);
            x += run;
            from = 0;
        }
    }
}

} // namespace kelvara::specimen
