#pragma once

#include "Kelvara/ViewType.h"
#include "Platform/Capture/AVCaptureTypes.h"
#include "Platform/Capture/PreviewMapping.h"

#include <QRectF>

#include <cstdint>
#include <optional>

namespace kelvara {

/// What the frame queue needs to know of the screen. The main thread publishes it whole whenever something of it
/// changes; the frame queue reads it once a frame and nothing else of the view. Immutable.
struct CaptureGeometry
{
    ViewType step = ViewType::idPhoto;
    /// Counts the sides and camera steps that were begun; results of an earlier one are dropped.
    std::uint64_t side = 0;
    bool hasNfc = false;
    /// The card's and the selfie's cut-outs in view coordinates; absent until the overlay was drawn and the preview
    /// has a connection.
    std::optional<QRectF> cutoutRect;
    std::optional<QRectF> cutoutSelfieRect;
    PreviewMapping mapping;
    AVCaptureVideoOrientation previewOrientation = AVCaptureVideoOrientation::LandscapeRight;
};

} // namespace kelvara
