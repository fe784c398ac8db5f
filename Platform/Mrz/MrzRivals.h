#pragma once

#include "Platform/Mrz/MrzChecks.h"

namespace kelvara {

/// What came of trying the rivals of a zone.
struct MrzSettlement
{
    bool isAmbiguous = false; ///< More than one combination comes out right, or there are too many to try.
    bool isGuess = false; ///< The one that does was chosen by check digits with too much room to choose.
};

/// Tries the combinations of what each character was taken for and its rivals, and takes the one that satisfies every
/// check. Where none does, the zone stays as it was; where several do, one with few rivals is taken.
MrzSettlement settleRivals(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone, const QDate& today);

} // namespace kelvara
