#pragma once

#include "Tools/Specimen/Dice.h"

#include <opencv2/core.hpp>

namespace kelvara::specimen {

/// Internal: pieces of surfaces, CV_32F with mean 0, about within −1 … 1.

/// Cloudy noise whose largest features are `grainX` × `grainY` pixels; each further octave is half as large and as
/// strong.
[[nodiscard]] cv::Mat cloudNoise(cv::Size size, double grainX, double grainY, int octaves, Dice& dice);

/// Fills a picture (CV_8UC4) with `colour` (B, G, R) where `level` brightens or darkens it: 1 adds `depth` grey levels.
void paintSurface(cv::Mat& picture, const cv::Vec3d& colour, const cv::Mat& level, const cv::Vec3d& depth);

} // namespace kelvara::specimen
