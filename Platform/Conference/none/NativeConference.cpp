#include "Platform/Conference/ConferenceService.h"

namespace kelvara {

std::shared_ptr<ConferenceService> ConferenceService::native()
{
    return nullptr; // built without the web engine
}

} // namespace kelvara
