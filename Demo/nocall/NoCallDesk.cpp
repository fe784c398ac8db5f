#include "Demo/CallDesk.h"

namespace kelvara::demo {

std::unique_ptr<CallDesk> CallDesk::make()
{
    return nullptr;
}

} // namespace kelvara::demo
