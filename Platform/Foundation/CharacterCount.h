#pragma once

#include <QString>

namespace kelvara {

/// How many characters a person would count: grapheme clusters, not UTF-16 units. Any thread.
[[nodiscard]] qsizetype characterCount(const QString& text);

} // namespace kelvara
