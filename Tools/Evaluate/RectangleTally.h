#pragma once

#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Evaluate/RectangleScenes.h"
#include "Tools/Evaluate/ThreadClock.h"

#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <thread>
#include <vector>

namespace kelvara::evaluate {

/// What a detector made of the scenes of one class.
struct RectangleTally
{
    int scenes = 0;
    int reported = 0;
    int within90 = 0; ///< Reported with an overlap (intersection over union) of at least 0.90 with the card.
    int within95 = 0;
    int beyondLimits = 0; ///< Reported, but the reported quadrilateral itself breaks the limits.
    std::vector<double> milliseconds; ///< The detector's own processor time, planes included, a scene.

    [[nodiscard]] int wrong() const { return reported - within90; }
    [[nodiscard]] double share(int count) const { return scenes > 0 ? static_cast<double>(count) / scenes : 0; }

    [[nodiscard]] double time(double quantile) const
    {
        if (milliseconds.empty())
            return 0;
        std::vector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[static_cast<std::size_t>(std::lround(quantile * static_cast<double>(sorted.size() - 1)))];
    }

    void add(const RectangleTally& other)
    {
        scenes += other.scenes;
        reported += other.reported;
        within90 += other.within90;
        within95 += other.within95;
        beyondLimits += other.beyondLimits;
        milliseconds.insert(milliseconds.end(), other.milliseconds.begin(), other.milliseconds.end());
    }
};

using Outline = std::vector<cv::Point2f>;

[[nodiscard]] inline Outline outlineOf(const QPolygonF& polygon)
{
    Outline outline;
    outline.reserve(static_cast<std::size_t>(polygon.size()));
    for (const QPointF& point : polygon)
        outline.emplace_back(static_cast<float>(point.x()), static_cast<float>(point.y()));
    return outline;
}

/// In pixels, origin top-left.
[[nodiscard]] inline Outline outlineOf(const VNRectangleObservation& found, QSize size)
{
    Outline outline;
    for (const QPointF& point : { found.topLeft, found.topRight, found.bottomRight, found.bottomLeft })
        outline.emplace_back(
            static_cast<float>(point.x() * size.width()), static_cast<float>((1 - point.y()) * size.height()));
    return outline;
}

/// Intersection over union of two convex outlines.
[[nodiscard]] inline double overlap(const Outline& a, const Outline& b)
{
    Outline common;
    const double shared = cv::intersectConvexConvex(a, b, common);
    return shared / (cv::contourArea(a) + cv::contourArea(b) - shared);
}

[[nodiscard]] inline bool keepsLimits(const Outline& outline, const RectangleLimits& limits, QSize size)
{
    const auto side = [&](std::size_t a, std::size_t b) { return cv::norm(outline[a] - outline[b]); };
    const double width = (side(0, 1) + side(3, 2)) / 2;
    const double height = (side(0, 3) + side(1, 2)) / 2;
    const double aspect = std::max(width, height) / std::min(width, height);
    return aspect >= limits.minimumAspectRatio && aspect <= limits.maximumAspectRatio
        && std::min(width, height) >= limits.minimumSize * std::min(size.width(), size.height());
}

inline void judge(const RectangleDetector& detector, const specimen::Scene& scene, RectangleTally& tally)
{
    const VisionImage image(scene.image);
    const double begin = threadMilliseconds();
    const std::vector<VNRectangleObservation> found = detector.detect(image, cardLimits);
    tally.milliseconds.push_back(threadMilliseconds() - begin);
    ++tally.scenes;
    if (found.empty())
        return;
    ++tally.reported;
    const Outline outline = outlineOf(found.front(), scene.image.size());
    tally.beyondLimits += !keepsLimits(outline, cardLimits, scene.image.size());
    const double common = scene.corners ? overlap(outline, outlineOf(*scene.corners)) : 0;
    tally.within90 += common >= 0.90;
    tally.within95 += common >= 0.95;
}

/// Photographs `count` scenes of a class on `threads` threads and lets every detector judge each of them.
[[nodiscard]] inline std::vector<RectangleTally> tallies(const std::vector<const RectangleDetector*>& detectors,
    RectangleScene kind, std::uint32_t firstSeed, int count, QSize size, int threads)
{
    std::vector<std::vector<RectangleTally>> parts(
        static_cast<std::size_t>(threads), std::vector<RectangleTally>(detectors.size()));
    std::vector<std::thread> workers;
    workers.reserve(static_cast<std::size_t>(threads));
    for (int worker = 0; worker < threads; ++worker) {
        workers.emplace_back([&, worker] {
            for (int i = worker; i < count; i += threads) {
                const std::uint32_t seed = firstSeed + static_cast<std::uint32_t>(i);
                const specimen::Scene scene = specimen::photograph(
                    specimen::SpecimenData::fromSeed(seed), rectangleSceneOptions(kind, seed, size));
                for (std::size_t d = 0; d < detectors.size(); ++d)
                    judge(*detectors[d], scene, parts[static_cast<std::size_t>(worker)][d]);
            }
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    std::vector<RectangleTally> sums(detectors.size());
    for (const std::vector<RectangleTally>& part : parts) {
        for (std::size_t d = 0; d < detectors.size(); ++d)
            sums[d].add(part[d]);
    }
    return sums;
}

} // namespace kelvara::evaluate
