#include "Platform/Mrz/OcrComponents.h"

#include <opencv2/imgproc.hpp>

namespace kelvara::ocr {

Components componentsOf(const cv::Mat& ink)
{
    Components found;
    cv::Mat stats;
    cv::Mat centroids;
    const int count = cv::connectedComponentsWithStats(ink, found.labels, stats, centroids, 8, CV_32S);
    for (int label = 1; label < count; ++label) {
        const int* row = stats.ptr<int>(label);
        found.all.push_back(
            { label, { row[cv::CC_STAT_LEFT], row[cv::CC_STAT_TOP], row[cv::CC_STAT_WIDTH], row[cv::CC_STAT_HEIGHT] },
                row[cv::CC_STAT_AREA] });
    }
    return found;
}

} // namespace kelvara::ocr
