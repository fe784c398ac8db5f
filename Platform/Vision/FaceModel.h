#pragma once

#include "Platform/Vision/FaceFeatures.h"

#include <array>

namespace kelvara {

/// Five linear filters over `FaceFeatures`: a face from the front, turned left, turned right, tilted left, tilted
/// right. (Origin and licence of the numbers: Resources/face-filters.txt.) Internal to the face detector. Immutable,
/// any thread.
struct FaceModel
{
    static constexpr int side = 10; ///< Cells; a window is 80 × 80 pixels.
    static constexpr int filterCount = 5;
    /// Channels of the coarse filters. Eight keep nearly all that the 31 say: see `FaceScan.cpp`.
    static constexpr int coarseChannels = 8;

    template<int Channels> using Filters = std::array<std::array<float, side * side * Channels>, filterCount>;

    /// By filter, then row, column, channel. A window shows a face where the sum exceeds the filter's threshold.
    Filters<FaceFeatures::stride> filters {};
    std::array<float, filterCount> thresholds {};

    /// Rows are the directions in the space of channels along which the filters differ most from zero.
    std::array<float, coarseChannels * FaceFeatures::stride> projection {};
    /// The filters' parts along those directions: to be applied to projected features.
    Filters<coarseChannels> coarseFilters {};
    /// The mean of the coarse filters and of the thresholds: any face, roughly.
    std::array<float, side * side * coarseChannels> generalFilter {};
    float generalThreshold = 0;

    /// The process's only one, made from the library's resources at the first call (well under a millisecond).
    [[nodiscard]] static const FaceModel& shared();
};

} // namespace kelvara
