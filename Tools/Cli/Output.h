#pragma once

#include <QJsonObject>
#include <QString>

namespace kelvara::cli {

/// One result on standard output, there at once: on a line of its own, or indented. False when it, or one before it,
/// could not be written.
[[nodiscard]] bool print(const QJsonObject& object, bool isPretty);

/// A sentence on the error stream.
void complain(const QString& sentence);

} // namespace kelvara::cli
