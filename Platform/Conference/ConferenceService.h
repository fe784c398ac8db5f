#pragma once

#include "Platform/Foundation/Export.h"

#include <memory>

namespace kelvara {

class ConferencePage;

/// How video calls are brought about on a device, as the view gets it from its platform. Main thread.
class KELVARA_EXPORT ConferenceService
{
public:
    virtual ~ConferenceService() = default;

    /// A page for one conference. Null: this device has no video calls, and joining says so.
    [[nodiscard]] virtual std::unique_ptr<ConferencePage> makePage() = 0;

    /// The conference server's own web client in Qt's web engine. Where the library was built without it, or it refuses
    /// to run (as root with its sandbox on), there are no calls.
    [[nodiscard]] static std::shared_ptr<ConferenceService> native();
};

} // namespace kelvara
