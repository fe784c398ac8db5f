#pragma once

#include <QStringList>

/// The names of what a session's log tells and a script can wait for.
namespace kelvara::replay {

/// The calls of the delegate, and "terminated", the one for conferences.
[[nodiscard]] const QStringList& callNames();

/// The screens that a view can show.
[[nodiscard]] const QStringList& screenNames();

/// Whether a script may wait for it: "ready", "step:<screen>", "scanning:on", "delegate:<call>", "sheet:<phase>",
/// "call:terminated", "destroyed" …
[[nodiscard]] bool isAwaitable(const QString& name);

/// Whether it asks what is, rather than what has come.
[[nodiscard]] bool isState(const QString& name);

} // namespace kelvara::replay
