#include "Platform/Vision/FaceScan.h"

#include "Platform/Vision/FaceModel.h"

#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <optional>

namespace kelvara {

namespace {

constexpr int side = FaceModel::side;
constexpr int window = side * FaceFeatures::cellSize;
/// From level to level of the pyramid. The filters answer to faces some 10 % smaller and larger than their window.
constexpr double scaleStep = 1.2;
/// Cells of nothing around the features, so that faces at the border, and as large as the image, are searched too.
constexpr int margin = 3;
constexpr int smallestLevel = window - FaceFeatures::cellSize;
// How far below a window's exact score its cheaper scores may lie. Measured on 175 photographs at three scales: where
// the exact score was a face's, the coarse one was at most 1.55 lower and the general one, in 99 of 100 windows, 2.7
// lower (a face answers in several windows). One window in fifteen is general enough, one in 300 is scored exactly.
constexpr float coarseSlack = 1.6F;
constexpr float generalSlack = 3.0F;
/// Above this overlap, over the union or over the smaller box, two candidates are one face.
constexpr float sameFaceOverlap = 0.3F;
constexpr float sameFaceCover = 0.7F;

using Vector = cv::v_float32x4;
constexpr int lanes = 4;

/// The features' parts along the model's main directions: what is left of 31 channels for the first look.
void project(const FaceFeatures& features, const FaceModel& model, std::vector<float>& projected)
{
    constexpr int channels = FaceModel::coarseChannels;
    constexpr int stride = FaceFeatures::stride;
    // Channels of a cell lie side by side in the output: multiply by columns of the projection.
    std::array<std::array<float, channels>, stride> columns;
    for (int channel = 0; channel < channels; ++channel) {
        for (int i = 0; i < stride; ++i)
            columns[i][channel] = model.projection[channel * stride + i];
    }
    const int cells = features.rows() * features.columns();
    projected.resize(static_cast<std::size_t>(cells) * channels);
    const float* cell = features.at(0, 0);
    float* out = projected.data();
    for (int i = 0; i < cells; ++i, cell += stride, out += channels) {
        Vector low = cv::v_setzero_f32();
        Vector high = cv::v_setzero_f32();
        for (int k = 0; k < FaceFeatures::channels; ++k) {
            const Vector value = cv::v_setall_f32(cell[k]);
            low = cv::v_fma(value, cv::v_load(columns[k].data()), low);
            high = cv::v_fma(value, cv::v_load(columns[k].data() + lanes), high);
        }
        cv::v_store(out, low);
        cv::v_store(out + lanes, high);
    }
}

/// The sum of products over a window of the grid: ten rows of ten cells with `channels` numbers each.
template<int channels> float product(const float* cell, int columns, const float* weights)
{
    constexpr int rowLength = side * channels;
    constexpr int sumCount = 4; // so that an addition need not wait for the one before
    static_assert(rowLength % (sumCount * lanes) == 0);
    std::array<Vector, sumCount> sums;
    sums.fill(cv::v_setzero_f32());
    for (int row = 0; row < side; ++row) {
        for (int i = 0; i < rowLength; i += sumCount * lanes) {
            for (int k = 0; k < sumCount; ++k) {
                const int place = i + k * lanes;
                sums[k] = cv::v_fma(cv::v_load(cell + place), cv::v_load(weights + place), sums[k]);
            }
        }
        cell += static_cast<std::size_t>(columns) * channels;
        weights += rowLength;
    }
    return cv::v_reduce_sum(sums[0] + sums[1] + (sums[2] + sums[3]));
}

/// The best filter's exact score of the window that begins at this cell; absent when the first looks show no face.
std::optional<float> faceScore(const FaceFeatures& features, const std::vector<float>& projected, int row, int column,
    const FaceModel& model, float minimumScore)
{
    constexpr int channels = FaceModel::coarseChannels;
    const int columns = features.columns();
    const float* cell = projected.data() + (static_cast<std::size_t>(row) * columns + column) * channels;
    if (product<channels>(cell, columns, model.generalFilter.data()) - model.generalThreshold
        < minimumScore - generalSlack)
        return std::nullopt;
    std::optional<float> best;
    for (int filter = 0; filter < FaceModel::filterCount; ++filter) {
        const float threshold = model.thresholds[filter];
        if (product<channels>(cell, columns, model.coarseFilters[filter].data()) - threshold
            < minimumScore - coarseSlack)
            continue;
        const float score
            = product<FaceFeatures::stride>(features.at(row, column), columns, model.filters[filter].data())
            - threshold;
        if (score >= minimumScore)
            best = std::max(score, best.value_or(score));
    }
    return best;
}

bool isSameFace(const cv::Rect2f& a, const cv::Rect2f& b)
{
    const float common = (a & b).area();
    return common > sameFaceOverlap * (a.area() + b.area() - common)
        || common > sameFaceCover * std::min(a.area(), b.area());
}

void keepBest(std::vector<FaceCandidate>& candidates)
{
    std::sort(candidates.begin(), candidates.end(),
        [](const FaceCandidate& a, const FaceCandidate& b) { return a.score > b.score; });
    std::vector<FaceCandidate> kept;
    for (const FaceCandidate& candidate : candidates) {
        if (std::none_of(kept.begin(), kept.end(),
                [&](const FaceCandidate& better) { return isSameFace(better.box, candidate.box); }))
            kept.push_back(candidate);
    }
    candidates = std::move(kept);
}

} // namespace

std::vector<FaceCandidate> scanForFaces(const cv::Mat& gray, float minimumScore)
{
    const FaceModel& model = FaceModel::shared();
    std::vector<FaceCandidate> candidates;
    FaceFeatures features;
    std::vector<float> projected;
    cv::Mat level = gray;
    for (double scale = 1; std::min(level.cols, level.rows) >= smallestLevel; scale /= scaleStep) {
        if (scale < 1) {
            cv::Mat smaller;
            const cv::Size size(cvRound(gray.cols * scale), cvRound(gray.rows * scale));
            if (std::min(size.width, size.height) < smallestLevel)
                break;
            cv::resize(level, smaller, size, 0, 0, cv::INTER_LINEAR);
            level = smaller;
        }
        features.compute(level, margin);
        project(features, model, projected);
        const auto toImage = static_cast<float>(1 / scale);
        for (int row = 0; row + side <= features.rows(); ++row) {
            for (int column = 0; column + side <= features.columns(); ++column) {
                const auto score = faceScore(features, projected, row, column, model, minimumScore);
                if (!score)
                    continue;
                const auto x = static_cast<float>(features.pixelOf(column)) * toImage;
                const auto y = static_cast<float>(features.pixelOf(row)) * toImage;
                candidates.push_back({ cv::Rect2f(x, y, window * toImage, window * toImage), *score });
            }
        }
    }
    keepBest(candidates);
    return candidates;
}

} // namespace kelvara
