#pragma once

#include "Platform/Vision/SideFit.h"
#include "Platform/Vision/VisionPlanes.h"

#include <array>
#include <vector>

namespace kelvara {

struct RectangleLimits;

/// A quadrilateral that was fitted to the image, with all that speaks for it. Internal.
struct CardCandidate
{
    Quad corners; ///< In pixels of the full image.
    std::array<SideEvidence, 4> sides; ///< Top, right, bottom, left.
    std::array<float, 4> overrun; ///< Support of each side's line beyond the corners: 0…1.
    std::array<float, 4> cornerEvidence; ///< Rounded corners: how like the surroundings the tips are, −1…1.
    float area = 0; ///< Of the image, 0…1.
};

/// The few best candidates of the image, in no particular order. Some lie beyond the limits: of a thing that is too
/// long for a card, parts would pass for one if the whole did not compete with them.
[[nodiscard]] std::vector<CardCandidate> searchCards(VisionImage::Planes& planes, const RectangleLimits& limits);

/// The candidate's corners fitted to the finest plane that pays.
[[nodiscard]] Quad refined(VisionImage::Planes& planes, const Quad& corners);

/// Whether a quadrilateral in an image of `size` keeps to the limits.
[[nodiscard]] bool within(const Quad& quad, const RectangleLimits& limits, cv::Size size);

} // namespace kelvara
