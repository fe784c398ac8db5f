#include "Platform/Foundation/CameraArbiter.h"

#include <QGuiApplication>

namespace kelvara {

CameraClaim::~CameraClaim()
{
    CameraArbiter::shared().release();
}

CameraArbiter& CameraArbiter::shared()
{
    // Never destroyed: sessions that live in static objects of a host may ask for it after the last of `main`.
    static auto* const arbiter = new CameraArbiter;
    return *arbiter;
}

CameraArbiter::CameraArbiter()
{
    if (!qGuiApp)
        return;
    applicationStateChanged(QGuiApplication::applicationState());
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &CameraArbiter::applicationStateChanged);
}

std::unique_ptr<CameraClaim> CameraArbiter::claim()
{
    std::unique_ptr<CameraClaim> claim(new CameraClaim);
    ++m_claims;
    tell();
    return claim;
}

void CameraArbiter::release()
{
    --m_claims;
    tell();
}

void CameraArbiter::applicationStateChanged(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationInactive) // another window has the focus, ours is still seen
        return;
    m_isInBackground = state == Qt::ApplicationHidden || state == Qt::ApplicationSuspended;
    tell();
}

void CameraArbiter::tell()
{
    if (m_told == isInterrupted())
        return;
    m_told = !m_told;
    Q_EMIT interruptedChanged(m_told);
}

} // namespace kelvara
