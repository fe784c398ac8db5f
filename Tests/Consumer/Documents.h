#pragma once

#include <QString>

/// Reads the machine-readable zone of a photographed specimen. Empty when all is well, else a sentence.
[[nodiscard]] QString tryZone();

/// Finds the face on a specimen's portrait, as above.
[[nodiscard]] QString tryFace();

/// Reads a chip that software plays, from the access key to the proofs, as above.
[[nodiscard]] QString tryChip();
