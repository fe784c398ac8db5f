#pragma once

#include "Platform/Mrz/MrzStates.h"
#include "Platform/Mrz/MrzZone.h"

namespace kelvara {

/// Adds the rivals of the characters of which the OCR itself is in doubt.
void addDoubtfulRivals(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone);

} // namespace kelvara
