#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/web/WebConferencePage.h"

#include <QCoreApplication>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace kelvara {

namespace {

/// The web engine ends the whole process when it is to run with its sandbox as root.
bool wouldEndTheProcess()
{
#ifdef Q_OS_UNIX
    if (geteuid() != 0 || qEnvironmentVariableIntValue("QTWEBENGINE_DISABLE_SANDBOX") == 1)
        return false;
    const QString flag = QStringLiteral("--no-sandbox");
    return !qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS").contains(flag)
        && !QCoreApplication::arguments().contains(flag);
#else
    return false;
#endif
}

class WebConferenceService final : public ConferenceService
{
public:
    [[nodiscard]] std::unique_ptr<ConferencePage> makePage() override
    {
        return wouldEndTheProcess() ? nullptr : std::make_unique<WebConferencePage>();
    }
};

} // namespace

std::shared_ptr<ConferenceService> ConferenceService::native()
{
    return std::make_shared<WebConferenceService>();
}

} // namespace kelvara
