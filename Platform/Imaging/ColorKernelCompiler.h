#pragma once

#include "Platform/Imaging/ColorKernelProgram.h"

#include <optional>

namespace kelvara::imaging {

/// Compiles a colour kernel's text (the language: see `CIColorKernel`). Absent when anything in it is not understood or
/// it is longer than 65536 characters.
[[nodiscard]] std::optional<KernelProgram> compileColorKernel(const QString& source);

} // namespace kelvara::imaging
