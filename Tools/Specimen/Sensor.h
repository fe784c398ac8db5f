#pragma once

#include "Tools/Specimen/Scene.h"

#include <opencv2/core.hpp>

namespace kelvara::specimen {

/// Internal. Multiplies every colour of `picture` (CV_8UC4) by 1 − `shade` / 255 (CV_8U, same size).
void darken(cv::Mat& picture, const cv::Mat& shade);

/// Internal. Adds `light` (CV_8U, same size) where `layer` (premultiplied) is opaque.
void addLight(cv::Mat& layer, const cv::Mat& light);

/// Internal. What lens and sensor do: blur of focus and hand, fall-off, cast shadow, colour of the light, exposure and
/// noise.
void expose(cv::Mat& picture, const SceneOptions& options);

} // namespace kelvara::specimen
