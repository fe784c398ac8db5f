#pragma once

#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionPlanes.h"
#include "Tools/Evaluate/RectangleTally.h"

#include <opencv2/imgproc.hpp>

namespace kelvara::evaluate {

/// The usual short recipe, to compare with: blur, Canny, contours, polygons of four corners, the largest one within
/// the limits.
class CannyBaseline final : public RectangleDetector
{
public:
    [[nodiscard]] std::vector<VNRectangleObservation> detect(
        const VisionImage& image, const RectangleLimits& limits) const override
    {
        cv::Mat edges;
        cv::GaussianBlur(image.planes().luma(0), edges, cv::Size(5, 5), 0);
        cv::Canny(edges, edges, 50, 150);
        cv::dilate(edges, edges, cv::Mat());
        std::vector<std::vector<cv::Point>> contours;
        cv::findContours(edges, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
        Outline best;
        double bestArea = 0;
        for (const std::vector<cv::Point>& contour : contours) {
            std::vector<cv::Point> polygon;
            cv::approxPolyDP(contour, polygon, 0.02 * cv::arcLength(contour, true), true);
            const double area = std::abs(cv::contourArea(polygon));
            if (polygon.size() != 4 || !cv::isContourConvex(polygon) || area <= bestArea)
                continue;
            const Outline outline = inOrder(polygon);
            if (!keepsLimits(outline, limits, image.size()))
                continue;
            best = outline;
            bestArea = area;
        }
        if (best.empty())
            return {};
        const auto normalised = [size = image.size()](cv::Point2f point) {
            return QPointF(
                static_cast<double>(point.x) / size.width(), 1 - static_cast<double>(point.y) / size.height());
        };
        VNRectangleObservation found;
        found.topLeft = normalised(best[0]);
        found.topRight = normalised(best[1]);
        found.bottomRight = normalised(best[2]);
        found.bottomLeft = normalised(best[3]);
        return { found };
    }

private:
    /// Clockwise from the corner nearest to the image's top left.
    static Outline inOrder(const std::vector<cv::Point>& polygon)
    {
        Outline outline(polygon.begin(), polygon.end());
        if (cv::contourArea(outline, true) < 0)
            std::reverse(outline.begin(), outline.end());
        const auto first = std::min_element(
            outline.begin(), outline.end(), [](cv::Point2f a, cv::Point2f b) { return a.x + a.y < b.x + b.y; });
        std::rotate(outline.begin(), first, outline.end());
        return outline;
    }
};

} // namespace kelvara::evaluate
