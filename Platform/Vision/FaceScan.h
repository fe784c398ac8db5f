#pragma once

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <vector>

namespace kelvara {

/// A place where the model saw a face: a square from the eyebrows to the chin and from ear to ear.
struct FaceCandidate
{
    cv::Rect2f box; ///< pixels of the searched image, origin at the upper left; may reach beyond it.
    float score; ///< above the filter's own threshold: 0 is the model's balance point, 1 a sure face.
};

/// Searches `gray` (8 bits) for upright faces of 80 pixels and more, up to its shorter side. Only the best of
/// overlapping candidates is kept; best first. Stateless, any thread; on the calling thread alone.
[[nodiscard]] std::vector<FaceCandidate> scanForFaces(const cv::Mat& gray, float minimumScore);

} // namespace kelvara
