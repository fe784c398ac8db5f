#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace kelvara::demo {

/// One page about a run, made of what `result.json` holds; its pictures are the files of the same folder.
[[nodiscard]] QByteArray htmlReport(const QJsonObject& result);

} // namespace kelvara::demo
