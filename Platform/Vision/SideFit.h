#pragma once

#include "Platform/Vision/Quad.h"

#include <opencv2/core/mat.hpp>

namespace kelvara {

/// What the pixels along one fitted side say. Internal.
struct SideEvidence
{
    float support = 0; ///< Share of the stations along the side that have an edge on the line.
    float fromSupport = 0; ///< The same for the first stretch of it, near `from`.
    float toSupport = 0; ///< The same for the last one.
    float dominance = 0; ///< Share of them at which that edge is the strongest around.
    float sharpness = 0; ///< Mean strength of those edges over the contrast around them: soft shadows have less.
    float contrast = 0; ///< Step of the mean colour from outside to inside, grey levels.
    float consistency = 0; ///< How far the steps of all stations agree in colour: 0…1.
    float rim = 0; ///< Change of colour from station to station just inside, grey levels.
    float surround = 0; ///< The same just outside.
    cv::Vec3f inside; ///< Mean colour just inside (B, G, R).
    cv::Vec3f outside; ///< Mean colour just outside.
};

/// A side as fitted: through two points, in the direction of the coarse side.
struct FittedSide
{
    cv::Point2f from;
    cv::Point2f to;
    SideEvidence evidence;
};

/// Fits the edge near the line `from`–`to`, whose right-hand side is the card's inside (y points down): sub-pixel
/// edges are looked for within `reach` pixels at stations along it, and a line is put through most of them, whatever
/// hides the others. The ends, where corners are rounded, are not looked at.
[[nodiscard]] FittedSide fitSide(const cv::Mat& bgra, cv::Point2f from, cv::Point2f to, int reach);

/// The corners at which four fitted sides (top, right, bottom, left, clockwise) meet.
[[nodiscard]] Quad cornersOf(const std::array<FittedSide, 4>& sides);

} // namespace kelvara
