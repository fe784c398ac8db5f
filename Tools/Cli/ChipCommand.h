#pragma once

#include <QStringList>

namespace kelvara::cli {

/// `kelvara chip`: reads one chip and prints it. `arguments` without the program's name and "chip"; returns the exit
/// code. Needs a `QCoreApplication`.
[[nodiscard]] int runChipCommand(const QStringList& arguments);

} // namespace kelvara::cli
