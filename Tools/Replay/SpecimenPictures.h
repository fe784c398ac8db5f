#pragma once

#include "Demo/CardContents.h"
#include "Tools/Replay/FlowScript.h"

#include <QImage>

namespace kelvara::replay {

/// The specimen as it lies in the view's cut-out, one still picture by seed; what is made once is kept for the next
/// session of the process, within bounds. Null if nothing can be printed. Main thread.
[[nodiscard]] QImage specimenPicture(std::uint32_t seed, Picture picture, bool isFrontCamera, QSize view, QSize frame);

/// What its chip holds; kept likewise.
[[nodiscard]] const demo::CardContents& specimenContents(std::uint32_t seed);

} // namespace kelvara::replay
