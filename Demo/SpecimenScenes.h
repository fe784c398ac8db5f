#pragma once

#include "Demo/CardMovie.h"
#include "Demo/Subject.h"
#include "Tools/Specimen/ScanAreas.h"

#include <cstdint>

namespace kelvara::demo {

/// The specimens that are held before the cameras when nothing else is given: invented cards and faces, from a seed.
class SpecimenScenes
{
public:
    SpecimenScenes(std::uint32_t seed, specimen::ScanAreas areas);

    /// The subject well within its cut-out. Takes a fraction of a second; any thread.
    [[nodiscard]] MovieClip clip(Subject subject) const;
    /// The same place without it.
    [[nodiscard]] QImage backdrop(Subject subject) const;
    /// How the hand shakes that holds the camera.
    [[nodiscard]] HandShake shake(double seconds) const;

private:
    [[nodiscard]] specimen::SceneOptions options(Subject subject) const;

    std::uint32_t m_seed;
    specimen::ScanAreas m_areas;
    specimen::SpecimenData m_data;
};

} // namespace kelvara::demo
