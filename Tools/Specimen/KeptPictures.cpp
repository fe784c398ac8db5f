#include "Tools/Specimen/KeptPictures.h"

#include "Tools/Specimen/Scene.h"

#include <mutex>
#include <vector>

namespace kelvara::specimen {

namespace {

struct Register
{
    std::mutex mutex;
    std::vector<KeptPictures*> all;
};

/// Made by the first that is kept, and so ended after the last.
Register& keptPictures()
{
    static Register all;
    return all;
}

} // namespace

KeptPictures::KeptPictures()
{
    Register& kept = keptPictures();
    const std::lock_guard lock(kept.mutex);
    kept.all.push_back(this);
}

KeptPictures::~KeptPictures()
{
    Register& kept = keptPictures();
    const std::lock_guard lock(kept.mutex);
    std::erase(kept.all, this);
}

void forgetPictures()
{
    Register& kept = keptPictures();
    const std::lock_guard lock(kept.mutex);
    for (KeptPictures* each : kept.all)
        each->forget();
}

} // namespace kelvara::specimen
