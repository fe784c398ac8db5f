#pragma once

#include <QStringList>

#include <cstdint>

namespace kelvara::ocrb {

enum class BandFormat { TD1, TD2, TD3 };

/// Lines of an invented document with right check digits and a date of birth before one of expiry; all from the seed.
[[nodiscard]] QStringList bandText(BandFormat format, std::uint32_t seed);

} // namespace kelvara::ocrb
