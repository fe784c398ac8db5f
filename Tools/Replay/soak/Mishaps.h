#pragma once

#include "Tools/Replay/soak/SoakDice.h"

#include <QJsonObject>

namespace kelvara::soak {

/// What comes in between: a step that a device, a chip, a call, an impatient finger or the host may take at any moment.
[[nodiscard]] QJsonObject mishap(SoakDice& dice);

[[nodiscard]] QJsonObject chipFault(SoakDice& dice);
/// A chip's profile: genuine, forged, old or odd.
[[nodiscard]] QJsonObject chip(SoakDice& dice);
[[nodiscard]] QString callAddress(SoakDice& dice);
[[nodiscard]] QString callEnd(SoakDice& dice);

} // namespace kelvara::soak
