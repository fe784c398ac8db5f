#pragma once

#include "Tools/Replay/FlowScript.h"

#include <QWidget>

namespace kelvara::replay {

/// Whether the control is on the screen, enabled, and nothing lies over it.
[[nodiscard]] bool canTap(QWidget& view, Control control);

/// Taps it where `canTap`; the view may be deleted by that.
void tap(QWidget& view, Control control);

} // namespace kelvara::replay
