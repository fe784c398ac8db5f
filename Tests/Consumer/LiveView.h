#pragma once

#include <QString>

/// Shows the view before replay cameras that see a specimen card, until its frames have been analysed and the card was
/// found in them. Empty when all is well, else a sentence.
[[nodiscard]] QString tryLiveView();
