#pragma once

#include "Platform/Mrz/QKMRZResult.h"

namespace kelvara {

/// Whether two readings agree in the fields that check digits protect. Names, sex and codes do not count: one document
/// may be read with some of their letters right and others wrong.
[[nodiscard]] inline bool sameProtectedFields(const QKMRZResult& a, const QKMRZResult& b)
{
    return a.documentNumber == b.documentNumber && a.birthDate == b.birthDate && a.expiryDate == b.expiryDate
        && a.personalNumber == b.personalNumber && a.personalNumber2 == b.personalNumber2;
}

} // namespace kelvara
