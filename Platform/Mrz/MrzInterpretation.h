#pragma once

#include "Platform/Mrz/MrzZone.h"

#include <QDate>

#include <tuple>

namespace kelvara {

/// A zone read as a document of one format, and how much speaks for that.
struct MrzInterpretation
{
    QKMRZResult result;
    bool isPlausible = false; ///< Whether this looks like a zone at all.
    int checks = 0; ///< How many check digits are right.
    int violations = 0;
    int corrections = 0;

    /// Greater is better.
    [[nodiscard]] std::tuple<bool, int, int, int> merit() const
    {
        return { result.allCheckDigitsValid, checks, -violations, -corrections };
    }
};

/// Reads the zone, whose lines have the format's length. `mended` are the marks of what was done to their lengths.
[[nodiscard]] MrzInterpretation interpretMrzZone(
    const MrzFormat& format, MrzZone zone, std::vector<MrzMark> mended, bool ocrCorrection, const QDate& today);

} // namespace kelvara
