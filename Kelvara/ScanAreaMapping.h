#pragma once

#include "Kelvara/CaptureGeometry.h"

#include <QRectF>
#include <QSize>

namespace kelvara {

/// The part of a frame that an on-screen cut-out shows, in the frame's pixels (origin top-left). The frame arrives
/// turned and mirrored as its connection asked, while the preview's normalised rectangle counts along the sensor's
/// axes; in portrait the two are swapped. Any thread.
[[nodiscard]] QRectF scanAreaInFrame(const QRectF& cutout, const CaptureGeometry& geometry, const QSize& frame);

/// The same grown on every side by a twentieth of its height.
[[nodiscard]] QRectF enlargedScanArea(const QRectF& area);

} // namespace kelvara
