#pragma once

#include "Platform/Chip/software/JsonFields.h"
#include "Tools/Replay/FlowScript.h"

#include <QDir>

namespace kelvara::replay {

/// One step of a script from its JSON object. What is wrong the fields keep. Any thread.
[[nodiscard]] FlowStep readFlowStep(chip::software::JsonFields fields, const QJsonObject& written, const QDir& base);

} // namespace kelvara::replay
