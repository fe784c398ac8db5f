#pragma once

#include "Tools/Replay/FlowScript.h"

#include <QByteArray>
#include <QDir>

#include <variant>

namespace kelvara::replay {

/// A script from its JSON text (Docs/replay.md describes the format), or one sentence that names the place at fault.
/// Unknown fields are errors. Paths are seen from `base`. Any thread.
[[nodiscard]] std::variant<FlowScript, QString> flowScriptFromJson(const QByteArray& json, const QDir& base);

/// The same from a file.
[[nodiscard]] std::variant<FlowScript, QString> flowScriptFromFile(const QString& path);

} // namespace kelvara::replay
