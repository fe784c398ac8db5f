#pragma once

#include "Platform/Mrz/QKMRZResult.h"

#include <span>

namespace kelvara {

/// A stretch of one line; absent when it has no length.
struct MrzPlace
{
    int line = 0;
    int column = 0;
    int length = 0;
};

/// Where a format of ICAO Doc 9303 keeps its fields.
struct MrzFormat
{
    MrzDocumentFormat format;
    int lines;
    int length; ///< Of every line.
    QStringView firstLetters; ///< What the document code may begin with.
    MrzPlace type, state, names;
    MrzPlace documentNumber, documentNumberCheck;
    MrzPlace birth, birthCheck;
    MrzPlace sex;
    MrzPlace expiry, expiryCheck;
    MrzPlace nationality;
    MrzPlace optional1, optional1Check;
    MrzPlace optional2;
    MrzPlace finalCheck;
    MrzPlace finalParts[4]; ///< What the final check digit covers, in order.
    bool longNumbers; ///< A document number may run on in the optional data.
};

/// All formats.
[[nodiscard]] std::span<const MrzFormat> mrzFormats();

} // namespace kelvara
