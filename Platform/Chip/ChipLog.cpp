#include "Platform/Chip/ChipLog.h"

namespace kelvara {

Q_LOGGING_CATEGORY(chipLog, "kelvara.chip")

} // namespace kelvara
