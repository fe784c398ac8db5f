#pragma once

#include <QString>

/// Places the library's own controls in a window, as hosts may, looks at them and presses one. Empty when all is well,
/// else a sentence.
[[nodiscard]] QString tryControls();
