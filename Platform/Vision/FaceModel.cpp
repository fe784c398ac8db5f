#include "Platform/Vision/FaceModel.h"

#include "Platform/Foundation/FatalError.h"

#include <QFile>
#include <QtEndian>

#include <opencv2/core.hpp>

// Outside the namespace, as the macro demands: a static library's resources are linked only when something asks.
static void initFaceModelResource()
{
    Q_INIT_RESOURCE(FaceModel);
}

namespace kelvara {

namespace {

constexpr int cells = FaceModel::side * FaceModel::side;
constexpr int channels = FaceFeatures::channels;
constexpr int stride = FaceFeatures::stride;

/// The file holds, for each filter, a plane of 10 × 10 numbers a channel and the threshold; little-endian floats.
void read(FaceModel& model)
{
    initFaceModelResource();
    QFile file(QStringLiteral(":/kelvara/vision/face-filters.bin"));
    constexpr qsizetype floats = FaceModel::filterCount * (channels * cells + 1);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    precondition(bytes.size() == floats * 4, "The face model of this build is damaged.");
    std::array<float, floats> numbers;
    qFromLittleEndian<float>(bytes.constData(), floats, numbers.data());

    const float* next = numbers.data();
    for (int filter = 0; filter < FaceModel::filterCount; ++filter) {
        for (int channel = 0; channel < channels; ++channel) {
            for (int place = 0; place < cells; ++place)
                model.filters[filter][place * stride + channel] = *next++;
        }
        model.thresholds[filter] = *next++;
    }
}

/// Principal directions of all the filters' numbers in the space of channels.
void reduce(FaceModel& model)
{
    cv::Mat stacked;
    for (auto& filter : model.filters)
        stacked.push_back(cv::Mat(cells, stride, CV_32F, filter.data()));
    cv::Mat variances;
    cv::Mat directions;
    cv::eigen(stacked.t() * stacked, variances, directions);
    const cv::Mat main = directions.rowRange(0, FaceModel::coarseChannels);
    main.copyTo(cv::Mat(main.size(), CV_32F, model.projection.data()));
    for (int filter = 0; filter < FaceModel::filterCount; ++filter) {
        const cv::Mat exact(cells, stride, CV_32F, model.filters[filter].data());
        const cv::Mat coarse = exact * main.t();
        coarse.copyTo(cv::Mat(coarse.size(), CV_32F, model.coarseFilters[filter].data()));
        for (std::size_t i = 0; i < model.generalFilter.size(); ++i)
            model.generalFilter[i] += model.coarseFilters[filter][i] / FaceModel::filterCount;
        model.generalThreshold += model.thresholds[filter] / FaceModel::filterCount;
    }
}

} // namespace

const FaceModel& FaceModel::shared()
{
    static const FaceModel model = [] {
        FaceModel fresh;
        read(fresh);
        reduce(fresh);
        return fresh;
    }();
    return model;
}

} // namespace kelvara
