#include "Platform/Vision/CardRectangleDetector.h"

#include "Platform/Vision/CardEvidence.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VisionPlanes.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr float kMeasured = 0.0075F; ///< Relative accuracy of an aspect.
constexpr float kLeastScore = -2.5F; ///< Log odds at which a card is reported: 1 of 5,400 empty tuning scenes passes.

/// A card is measured to about half a percent. A quadrilateral that misses the aspect limits by less than
/// `kMeasured` is taken to be just within them, its short or long sides made longer by that much.
Quad settled(const Quad& quad, const RectangleLimits& limits)
{
    const float aspect = QuadSize(quad).aspect();
    const bool tooLong = aspect > limits.maximumAspectRatio;
    const float factor = tooLong ? aspect / limits.maximumAspectRatio : limits.minimumAspectRatio / aspect;
    if (!(factor > 1 && factor < 1 + kMeasured))
        return quad;
    const float part = (factor * 1.0005F - 1) / 2;
    const bool landscape = QuadSize(quad).width > QuadSize(quad).height;
    const bool stretchHeight = landscape == tooLong;
    Quad result = quad;
    for (std::size_t corner = 0; corner < 4; ++corner) {
        // Corners 0–3 and 1–2 share an upright side, 0–1 and 2–3 a lying one.
        const cv::Point2f other = quad[stretchHeight ? 3 - corner : corner ^ 1];
        result[corner] += (quad[corner] - other) * part;
    }
    return result;
}

/// Normalised, origin at the lower left.
VNRectangleObservation observationOf(const Quad& corners, cv::Size size, float logOdds)
{
    const auto normalised = [size](cv::Point2f point) {
        return QPointF(static_cast<qreal>(point.x) / size.width, 1 - static_cast<qreal>(point.y) / size.height);
    };
    VNRectangleObservation observation;
    observation.topLeft = normalised(corners[0]);
    observation.topRight = normalised(corners[1]);
    observation.bottomRight = normalised(corners[2]);
    observation.bottomLeft = normalised(corners[3]);
    const auto [left, right] = std::minmax(
        { observation.topLeft.x(), observation.topRight.x(), observation.bottomRight.x(), observation.bottomLeft.x() });
    const auto [bottom, top] = std::minmax(
        { observation.topLeft.y(), observation.topRight.y(), observation.bottomRight.y(), observation.bottomLeft.y() });
    observation.boundingBox = QRectF(left, bottom, right - left, top - bottom);
    observation.confidence = 1 / (1 + std::exp(-logOdds));
    return observation;
}

} // namespace

std::vector<VNRectangleObservation> CardRectangleDetector::detect(
    const VisionImage& image, const RectangleLimits& limits) const
{
    if (limits.maximumObservations < 1)
        return {};
    VisionImage::Planes& planes = image.planes();
    const cv::Size size = planes.bgra(0).size();
    const CardCandidate* best = nullptr;
    float bestScore = kLeastScore;
    const std::vector<CardCandidate> candidates = searchCards(planes, limits);
    for (const CardCandidate& candidate : candidates) {
        const float candidateScore = score(candidate);
        if (candidateScore > bestScore) {
            bestScore = candidateScore;
            best = &candidate;
        }
    }
    if (!best)
        return {};
    const Quad corners = settled(refined(planes, best->corners), limits);
    if (!within(corners, limits, size))
        return {};
    return { observationOf(corners, size, bestScore) };
}

} // namespace kelvara
