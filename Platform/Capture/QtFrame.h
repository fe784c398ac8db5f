#pragma once

#include "Platform/Capture/FrameConverter.h"

class QVideoFrame;

namespace kelvara {

/// The picture of a Qt Multimedia frame, upright as the frame's own tags say; absent for an invalid or damaged frame.
/// Common layouts are mapped and converted; what else there is goes through an image of Qt's. Internal; one thread at
/// a time.
[[nodiscard]] std::optional<CVPixelBuffer> pictureOf(const QVideoFrame& frame, FrameConverter& converter);

} // namespace kelvara
