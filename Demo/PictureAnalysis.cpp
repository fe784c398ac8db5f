#include "Demo/PictureAnalysis.h"

#include "Platform/Vision/VNDetectFaceRectanglesRequest.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VNDetectTextRectanglesRequest.h"
#include "Platform/Vision/VNImageRequestHandler.h"

#include <algorithm>

namespace kelvara::demo {

namespace {

constexpr float kMinimumCardAspect = 1.3F;
constexpr float kMaximumCardAspect = 1.6F;

void perform(const QImage& picture, const std::shared_ptr<VNRequest>& request,
    const std::shared_ptr<const VisionDetectors>& detectors)
{
    const QImage pixels = picture.format() == QImage::Format_ARGB32_Premultiplied
        ? picture
        : picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    VNImageRequestHandler handler(pixels, CGImagePropertyOrientation::Up, {}, detectors);
    handler.perform({ &request, 1 }); // what could not be analysed has no results
}

QPointF inPicture(const QPointF& normalised, const QSize& size)
{
    return { normalised.x() * size.width(), (1 - normalised.y()) * size.height() };
}

} // namespace

PictureAnalysis::PictureAnalysis(std::shared_ptr<const VisionDetectors> detectors) : m_detectors(std::move(detectors))
{ }

std::optional<QPolygonF> PictureAnalysis::card(const QImage& picture, float minimumSize) const
{
    const auto request = std::make_shared<VNDetectRectanglesRequest>();
    request->limits = { .minimumAspectRatio = kMinimumCardAspect,
        .maximumAspectRatio = kMaximumCardAspect,
        .minimumSize = minimumSize,
        .maximumObservations = 1 };
    perform(picture, request, m_detectors);
    const auto* found = request->resultsAs<VNRectangleObservation>();
    if (!found || found->empty())
        return std::nullopt;
    const VNRectangleObservation& card = found->front();
    QPolygonF corners;
    for (const QPointF& corner : { card.topLeft, card.topRight, card.bottomRight, card.bottomLeft })
        corners << inPicture(corner, picture.size());
    return corners;
}

std::optional<QRectF> PictureAnalysis::face(const QImage& picture) const
{
    const auto request = std::make_shared<VNDetectFaceRectanglesRequest>();
    perform(picture, request, m_detectors);
    const auto* found = request->resultsAs<VNFaceObservation>();
    if (!found || found->empty())
        return std::nullopt;
    const QRectF box = found->front().boundingBox;
    return QRectF(inPicture(box.bottomLeft(), picture.size()), inPicture(box.topRight(), picture.size())).normalized();
}

double PictureAnalysis::textWidth(const QImage& picture) const
{
    const auto request = std::make_shared<VNDetectTextRectanglesRequest>();
    perform(picture, request, m_detectors);
    double widest = 0;
    if (const auto* lines = request->resultsAs<VNTextObservation>()) {
        for (const VNTextObservation& line : *lines)
            widest = std::max(widest, line.boundingBox.width());
    }
    return widest;
}

} // namespace kelvara::demo
