#pragma once

#include <QLoggingCategory>

namespace kelvara {

/// "kelvara.chip". Nothing of a card's data ever goes there.
Q_DECLARE_LOGGING_CATEGORY(chipLog)

} // namespace kelvara
