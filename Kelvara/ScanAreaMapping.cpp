#include "Kelvara/ScanAreaMapping.h"

namespace kelvara {

QRectF scanAreaInFrame(const QRectF& cutout, const CaptureGeometry& geometry, const QSize& frame)
{
    const QRectF r = geometry.mapping.metadataOutputRectOfInterest(cutout, frame);
    const double w = frame.width();
    const double h = frame.height();
    const bool upright = geometry.previewOrientation == AVCaptureVideoOrientation::Portrait
        || geometry.previewOrientation == AVCaptureVideoOrientation::PortraitUpsideDown;
    if (upright)
        return { r.y() * w, r.x() * h, r.height() * w, r.width() * h };
    return { r.x() * w, r.y() * h, r.width() * w, r.height() * h };
}

QRectF enlargedScanArea(const QRectF& area)
{
    const double margin = area.height() * 0.05;
    return area.adjusted(-margin, -margin, margin, margin);
}

} // namespace kelvara
