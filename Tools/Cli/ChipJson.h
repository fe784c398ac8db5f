#pragma once

#include "Platform/Chip/NFCPassportModel.h"
#include "Platform/Chip/NFCPassportReaderError.h"

#include <QJsonObject>

namespace kelvara::cli {

/// A chip as it was read; pictures are left out.
[[nodiscard]] QJsonObject jsonOf(const NFCPassportModel& passport);
/// Why it was not read.
[[nodiscard]] QJsonObject jsonOf(const NFCPassportReaderError& error);
[[nodiscard]] QJsonObject jsonOf(const chip::ChipVerification& verification);

} // namespace kelvara::cli
