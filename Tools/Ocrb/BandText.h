#pragma once

#include <QStringList>

#include <cstdint>

namespace kelvara::ocrb {

enum class BandFormat { TD1, TD2, TD3 };

/// Lines of an invented document with right check digits and a date of birth before one of expiry; all from the seed.
[[nodiscard]] QStringList bandText(BandFormat format, std::uint32_t seed);

/// Three lines of 30 in which every character comes about equally often, digits and letters mixed.
[[nodiscard]] QStringList evenText(std::uint32_t seed);

} // namespace kelvara::ocrb
