#pragma once

#include <QPointF>
#include <QRectF>

namespace kelvara {

/// What an analysis request found. All coordinates are normalised to the analysed image (0…1 in both axes), origin at
/// the lower left. Values, any thread.
struct VNDetectedObjectObservation
{
    QRectF boundingBox; ///< x, y of the lower-left corner, width, height.
    float confidence = 1.0F;
};

/// A quadrilateral; `top…` and `…Left` are as seen in the upright image.
struct VNRectangleObservation : VNDetectedObjectObservation
{
    QPointF topLeft;
    QPointF topRight;
    QPointF bottomLeft;
    QPointF bottomRight;
};

struct VNTextObservation : VNRectangleObservation
{ };

struct VNFaceObservation : VNDetectedObjectObservation
{ };

} // namespace kelvara
