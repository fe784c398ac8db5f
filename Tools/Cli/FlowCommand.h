#pragma once

#include <QStringList>

namespace kelvara::cli {

/// `kelvara flow`: plays scripts of whole sessions. `arguments` without the program's name and the command; needs a
/// `QApplication`. Returns the exit code.
[[nodiscard]] int runFlowCommand(const QStringList& arguments);

} // namespace kelvara::cli
