#include "Tools/Cli/FaceLook.h"

#include "Platform/Vision/VNDetectFaceRectanglesRequest.h"
#include "Platform/Vision/VNImageRequestHandler.h"
#include "Platform/Vision/VisionDetectors.h"

#include <QElapsedTimer>

namespace kelvara::cli {

Finding FaceLook::at(const QImage& picture)
{
    QElapsedTimer timer;
    timer.start();
    const auto request = std::make_shared<VNDetectFaceRectanglesRequest>();
    const std::shared_ptr<VNRequest> shared = request;
    const auto unusable = VNImageRequestHandler(picture, CGImagePropertyOrientation::Up, {}, VisionDetectors::native())
                              .perform({ &shared, 1 });
    Finding finding;
    finding.milliseconds.insert(QStringLiteral("search"), rounded(double(timer.nsecsElapsed()) / 1e6));
    const auto* found = request->resultsAs<VNFaceObservation>();
    if (unusable || !found) {
        finding.reason = QStringLiteral("The picture cannot be searched.");
        return finding;
    }
    QJsonArray faces;
    for (const VNFaceObservation& face : *found) {
        const QRectF box(face.boundingBox.x() * picture.width(),
            (1 - face.boundingBox.y() - face.boundingBox.height()) * picture.height(),
            face.boundingBox.width() * picture.width(), face.boundingBox.height() * picture.height());
        QJsonObject entry = jsonOf(box.topLeft());
        const QJsonObject size = jsonOf(QPointF(box.width(), box.height()));
        entry.insert(QStringLiteral("width"), size[QLatin1String("x")]);
        entry.insert(QStringLiteral("height"), size[QLatin1String("y")]);
        entry.insert(QStringLiteral("confidence"), double(face.confidence));
        faces << entry;
        finding.outlines.push_back(QPolygonF({ box.topLeft(), box.topRight(), box.bottomRight(), box.bottomLeft() }));
    }
    finding.facts.insert(QStringLiteral("faces"), faces);
    finding.found = !faces.isEmpty();
    if (!finding.found)
        finding.reason = QStringLiteral("There is no upright face.");
    return finding;
}

} // namespace kelvara::cli
