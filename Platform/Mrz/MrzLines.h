#pragma once

#include "Platform/Mrz/MrzLineReading.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace kelvara {

/// The lines of an OCR's text that may belong to a machine-readable zone: without spaces (only U+0020), split at line
/// feeds, those that are at least as long as the mean of the non-empty ones (in user-perceived characters, the mean
/// rounded down). Absent when no line is left; never empty. Any thread.
[[nodiscard]] std::optional<QStringList> mrzLines(const QString& text);

/// The same for lines that were read one by one, with their doubts.
[[nodiscard]] std::optional<std::vector<MrzLineReading>> mrzLines(const std::vector<MrzLineReading>& lines);

} // namespace kelvara
