#pragma once

#include "Platform/Mrz/MrzStates.h"
#include "Platform/Mrz/MrzZone.h"

namespace kelvara {

/// What came of fitting a zone to its format.
struct MrzFitting
{
    MrzShapes shapes; ///< Of the issuer as read.
    bool isStateKnown = false;
    int corrections = 0; ///< Characters that had to be replaced, wherever they stand.
    int violations = 0; ///< Places that cannot be what they must be, whatever the OCR mistook.
};

/// Replaces characters where the alphabet of the place allows only one look-alike, and notes as rivals what a place may
/// be instead: where several look-alikes are possible, where a letter stands among digits that looks like one, where
/// letters and fillers of the same weight meet.
[[nodiscard]] MrzFitting fitMrzZone(const MrzFormat& format, MrzZone& zone);

} // namespace kelvara
