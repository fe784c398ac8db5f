#pragma once

#include <QDate>
#include <QStringView>

#include <optional>

namespace kelvara {

/// The day that six digits YYMMDD name as a date of birth: the latest one that is not after `today`. Absent when they
/// are no day (unknown parts are printed as fillers).
[[nodiscard]] std::optional<QDate> mrzBirthDate(QStringView digits, const QDate& today);

/// The day that they name as a date of expiry: of the century that brings its year nearest to `today`'s.
[[nodiscard]] std::optional<QDate> mrzExpiryDate(QStringView digits, const QDate& today);

} // namespace kelvara
