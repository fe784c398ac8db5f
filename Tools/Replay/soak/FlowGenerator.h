#pragma once

#include <QJsonObject>

#include <cstdint>

namespace kelvara::soak {

/// How many specimens the flows share: their pictures are made once.
inline constexpr int kSpecimens = 4;

/// A script for `kelvara flow`, all from the seed: a person who goes through some steps on some device, and whatever
/// comes in between. Its waits may be in vain but for the last ones: whatever happened, a camera that is plugged in,
/// asked to scan and taken by nobody else runs. Any thread.
[[nodiscard]] QJsonObject generateFlow(std::uint32_t seed);

} // namespace kelvara::soak
