#pragma once

#include "Platform/Mrz/QKMRZResult.h"

#include <QStringView>

namespace kelvara {

/// Whether three characters (with fillers to the right of shorter codes) are a code of ICAO Doc 9303-3, section 5:
/// states, organisations, persons without a nationality, and the example state UTO.
[[nodiscard]] bool isMrzState(QStringView code);

/// What the documents of an issuer are known to look like, as one character a place: 'A' a letter, '9' a digit,
/// '<' a filler. Empty: nothing is known.
struct MrzShapes
{
    QStringView documentNumber;
    QStringView optional1;
    QStringView optional2;
    QStringView absentLetters; ///< Which document numbers do not have, where their shape is free.
    bool turkishIdentityNumber = false; ///< The first optional data are a Turkish identity number.
};

/// `code` with its fillers.
[[nodiscard]] MrzShapes mrzShapes(MrzDocumentFormat format, QStringView code);

} // namespace kelvara
