#include "Tools/Replay/FlowEvents.h"

namespace kelvara::replay {

const QStringList& callNames()
{
    static const QStringList names { QStringLiteral("didCaptureIdFrontPhoto"), QStringLiteral("didCaptureIdBackPhoto"),
        QStringLiteral("didCaptureSelfiePhoto"), QStringLiteral("didReadNfc"),
        QStringLiteral("didDetectSdkDataBeforeJitsi"), QStringLiteral("didClose"), QStringLiteral("terminated") };
    return names;
}

const QStringList& screenNames()
{
    static const QStringList names { QStringLiteral("idPhoto"), QStringLiteral("selfie"), QStringLiteral("nfcRead"),
        QStringLiteral("jitsi"), QStringLiteral("finished"), QStringLiteral("noSteps"), QStringLiteral("noFrontCamera"),
        QStringLiteral("noBackCamera"), QStringLiteral("nfcRequired") };
    return names;
}

bool isState(const QString& name)
{
    return name == u"ready" || name.startsWith(u"step:") || name.startsWith(u"scanning:");
}

bool isAwaitable(const QString& name)
{
    static const QStringList others { QStringLiteral("ready"), QStringLiteral("scanning:on"),
        QStringLiteral("scanning:off"), QStringLiteral("sheet:present"), QStringLiteral("sheet:reading"),
        QStringLiteral("sheet:presentAgain"), QStringLiteral("sheet:done"), QStringLiteral("sheet:failed"),
        QStringLiteral("sheet:gone"), QStringLiteral("call:hangUp"), QStringLiteral("call:terminated"),
        QStringLiteral("destroyed") };
    if (name.startsWith(u"step:"))
        return screenNames().contains(name.mid(5));
    if (name.startsWith(u"delegate:"))
        return name != u"delegate:terminated" && callNames().contains(name.mid(9));
    return others.contains(name);
}

} // namespace kelvara::replay
