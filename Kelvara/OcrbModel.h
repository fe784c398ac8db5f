#pragma once

#include "Platform/Foundation/Export.h"

#include <QString>

namespace kelvara {

/// The folder of the library's own resources that holds "ocrb.traineddata", for a `TesseractEngine`. Any thread.
[[nodiscard]] KELVARA_EXPORT QString ocrbModelFolder();

} // namespace kelvara
