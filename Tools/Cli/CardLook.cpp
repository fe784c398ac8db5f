#include "Tools/Cli/CardLook.h"

#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VNImageRequestHandler.h"
#include "Platform/Vision/VisionDetectors.h"

#include <QElapsedTimer>

namespace kelvara::cli {

namespace {

constexpr float kMinimumAspect = 1.3F;
constexpr float kMaximumAspect = 1.6F;
constexpr float kMinimumSize = 0.2F; ///< Of the picture: a card may lie in the middle of much else.

} // namespace

Finding CardLook::at(const QImage& picture)
{
    QElapsedTimer timer;
    timer.start();
    const auto request = std::make_shared<VNDetectRectanglesRequest>();
    request->limits = { .minimumAspectRatio = kMinimumAspect,
        .maximumAspectRatio = kMaximumAspect,
        .minimumSize = kMinimumSize,
        .maximumObservations = 1 };
    const std::shared_ptr<VNRequest> shared = request;
    const auto unusable = VNImageRequestHandler(picture, CGImagePropertyOrientation::Up, {}, VisionDetectors::native())
                              .perform({ &shared, 1 });
    Finding finding;
    finding.milliseconds.insert(QStringLiteral("search"), rounded(double(timer.nsecsElapsed()) / 1e6));
    const auto* found = request->resultsAs<VNRectangleObservation>();
    if (unusable || !found) {
        finding.reason = QStringLiteral("The picture cannot be searched.");
        return finding;
    }
    if (found->empty()) {
        finding.reason = QStringLiteral("There is no card with four visible sides.");
        return finding;
    }
    const VNRectangleObservation& card = found->front();
    QPolygonF corners;
    for (const QPointF& corner : { card.topLeft, card.topRight, card.bottomRight, card.bottomLeft })
        corners << QPointF(corner.x() * picture.width(), (1 - corner.y()) * picture.height());
    finding.found = true;
    finding.facts.insert(QStringLiteral("corners"), jsonOf(corners));
    finding.facts.insert(QStringLiteral("confidence"), double(card.confidence));
    finding.outlines.push_back(corners);
    return finding;
}

} // namespace kelvara::cli
