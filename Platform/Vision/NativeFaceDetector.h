#pragma once

#include "Platform/Vision/VisionDetectors.h"

namespace kelvara {

/// The library's own face detector: gradient histograms and five linear filters (front, turned, tilted), searched over
/// a pyramid. It finds upright faces from about an eighth of the longer side of the image to its whole shorter side;
/// boxes reach from the forehead to the chin and from ear to ear, are cut to the image, and come best first. Returns at
/// once: the model is a resource of 62 kB that the first search reads within a millisecond.
[[nodiscard]] std::shared_ptr<const FaceDetector> makeNativeFaceDetector();

/// The same with a decision of one's own, for evaluations: only faces of at least this score are reported.
[[nodiscard]] std::shared_ptr<const FaceDetector> makeFaceDetector(float leastScore);

/// The score behind an observation of these detectors' `confidence`.
[[nodiscard]] float faceScore(const VNFaceObservation& face);

} // namespace kelvara
