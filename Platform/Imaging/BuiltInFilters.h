#pragma once

#include "Platform/Imaging/CIFilter.h"

namespace kelvara::imaging {

/// A built-in filter of that name; null when there is none.
[[nodiscard]] std::unique_ptr<CIFilter> makeBuiltInFilter(const QString& name);

} // namespace kelvara::imaging
