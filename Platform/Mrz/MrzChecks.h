#pragma once

#include "Platform/Mrz/MrzStates.h"
#include "Platform/Mrz/MrzZone.h"

#include <QDate>

#include <optional>

namespace kelvara {

/// A document number with its check digit, wherever the zone keeps them.
struct MrzDocumentNumber
{
    QString number; ///< Without the fillers at its end.
    QString checkDigit;
    QString rest; ///< The first optional data without what the number took of them.
    bool isValid = false;
};

[[nodiscard]] MrzDocumentNumber mrzDocumentNumber(const MrzFormat& format, const MrzZone& zone);

/// What of a zone, as taken, comes out right.
struct MrzChecks
{
    bool documentNumber = false;
    bool birth = false;
    bool expiry = false;
    std::optional<bool> personalNumber;
    std::optional<bool> final;
    bool areDatesReal = false;
    bool isIdentityNumberRight = true; ///< Where the shape says that there is one.

    [[nodiscard]] int count() const;
    /// Every check digit of the format and both dates.
    [[nodiscard]] bool all() const;
};

[[nodiscard]] MrzChecks checkMrzZone(
    const MrzFormat& format, const MrzShapes& shapes, const MrzZone& zone, const QDate& today);

} // namespace kelvara
