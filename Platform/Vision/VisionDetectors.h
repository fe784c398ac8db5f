#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Vision/VNObservation.h"

#include <memory>
#include <vector>

namespace kelvara {

struct RectangleLimits;
class VisionImage;

/// Finds quadrilaterals. Stateless towards its callers: any thread, several at a time.
class KELVARA_EXPORT RectangleDetector
{
public:
    virtual ~RectangleDetector() = default;
    [[nodiscard]] virtual std::vector<VNRectangleObservation> detect(
        const VisionImage& image, const RectangleLimits& limits) const = 0;
};

/// Finds lines of text. Any thread, several at a time.
class KELVARA_EXPORT TextRectangleDetector
{
public:
    virtual ~TextRectangleDetector() = default;
    [[nodiscard]] virtual std::vector<VNTextObservation> detect(const VisionImage& image) const = 0;
};

/// Finds upright faces. Any thread, several at a time.
class KELVARA_EXPORT FaceDetector
{
public:
    virtual ~FaceDetector() = default;
    [[nodiscard]] virtual std::vector<VNFaceObservation> detect(const VisionImage& image) const = 0;
};

/// The detectors behind the analysis requests. A null one means that the request cannot be served. Immutable once
/// shared; any thread.
class KELVARA_EXPORT VisionDetectors
{
public:
    std::shared_ptr<const RectangleDetector> rectangles;
    std::shared_ptr<const TextRectangleDetector> text;
    std::shared_ptr<const FaceDetector> faces;

    /// The library's own: card rectangles, text lines and faces on OpenCV. Cheap to call: models are loaded in the
    /// background on first use of the process and shared.
    [[nodiscard]] static std::shared_ptr<const VisionDetectors> native();
};

} // namespace kelvara
