#pragma once

#include <QString>

namespace kelvara {

/// The folder of the library's own resources that holds "ocrb.traineddata", for a `TesseractEngine`. Any thread.
[[nodiscard]] QString ocrbModelFolder();

} // namespace kelvara
